// Measures the memory of a running recording, and the time to save it.

#include "core/eye_tracking_csv.h"
#include "support/bare_writer.h"
#include "support/memory.h"
#include "support/rounds.h"
#include "support/typical_samples.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QVariantList>
#include <cstdio>

namespace {

constexpr std::size_t sampleCount = 1000000;
constexpr std::size_t variantRowCount = 100000;
constexpr int memoryRoundCount = 3;
constexpr std::size_t savedRowCount = 500000;
constexpr int defaultRoundCount = 11;

struct BytesPerRow {
    std::vector<double> resident;
    std::vector<double> allocated;

    void add(const bench::Memory &before, const bench::Memory &after, std::size_t rows) {
        const auto perRow = [rows](std::size_t from, std::size_t to) {
            return (static_cast<double>(to) - static_cast<double>(from)) / static_cast<double>(rows);
        };
        resident.push_back(perRow(before.resident, after.resident));
        allocated.push_back(perRow(before.allocated, after.allocated));
    }
    void print(const char *name) const {
        std::printf("%-58s %9.1f %9.1f\n", name, bench::median(resident), bench::median(allocated));
    }
};

QVariantList variantRow(const EyeTrackingSample &s) {
    return {s.timestamp, s.timestamp, int{s.valid}, s.x,          s.y,          s.x_px,      s.y_px,      s.distance_cm,
            s.l_x,       s.l_y,       s.l_x_px,     s.l_y_px,     s.l_pupil_mm, s.l_pupil_x, s.l_pupil_y, s.r_x,
            s.r_y,       s.r_x_px,    s.r_y_px,     s.r_pupil_mm, s.r_pupil_x,  s.r_pupil_y, s.focus};
}

/// Returns the memory in use while the rows exist.
bench::Memory memoryWithVariants(const std::vector<EyeTrackingSample> &samples) {
    QList<QVariantList> rows;
    for (std::size_t i = 0; i < variantRowCount; ++i)
        rows.append(variantRow(samples[i]));
    return bench::memoryInUse();
}

bench::Memory memoryWithRecording(const std::vector<EyeTrackingSample> &samples) {
    EyeTrackingCSV recording(QString(), false);
    for (const EyeTrackingSample &sample : samples)
        recording.addSample(sample);
    return bench::memoryInUse();
}

void measureMemory() {
    const std::vector<EyeTrackingSample> samples = bench::typicalSamples(sampleCount);
    BytesPerRow variants;
    BytesPerRow recording;
    for (int round = 0; round < memoryRoundCount; ++round) {
        const bench::Memory empty = bench::memoryInUse();
        variants.add(empty, memoryWithVariants(samples), variantRowCount);
        const bench::Memory released = bench::memoryInUse();
        recording.add(released, memoryWithRecording(samples), sampleCount);
    }
    std::printf("Memory of a running recording (%d rounds)\n%-58s %9s %9s\n", memoryRoundCount, "bytes per sample",
                "resident", "malloc");
    variants.print("baseline: QList<QVariantList>, 100,000 rows");
    recording.print("EyeTrackingCSV, 1,000,000 rows");
    std::printf("x baseline %.2f\n", bench::medianRatio(recording.resident, variants.resident));
}

std::string contentOf(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qUtf8Printable(path));
    return file.readAll().toStdString();
}

/// Compares saving a recording with two bare writers of the same bytes.
class Saving {
public:
    explicit Saving(const QString &folder)
        : recordingPath_(folder + "/recording.csv"),
          barePath_((folder + "/bare.csv").toStdString()),
          recording_(recordingPath_, false),
          samples_(bench::typicalSamples(savedRowCount)) {
        for (const EyeTrackingSample &sample : samples_)
            recording_.addSample(sample);
        recording_.saveFile();
        bytes_ = contentOf(recordingPath_);
        headerLine_ = bytes_.substr(0, bytes_.find('\n') + 1);
    }

    /// The comparison is valid only if the writers write the same bytes.
    [[nodiscard]] bool sameBytes() const {
        bench::formatAndWrite(barePath_, headerLine_, samples_);
        return contentOf(QString::fromStdString(barePath_)) == bytes_;
    }

    [[nodiscard]] std::size_t bytesPerRow() const { return bytes_.size() / savedRowCount; }

    [[nodiscard]] std::vector<bench::Candidate> candidates() {
        // Without this, each round would also rename or replace the files of the previous round.
        const auto clear = [this] {
            QFile::remove(recordingPath_);
            QFile::remove(QString::fromStdString(barePath_));
        };
        return {
            {"baseline: to_chars into a buffer, write(), no sync", savedRowCount,
             [this] { bench::formatAndWrite(barePath_, headerLine_, samples_); }, clear},
            {"baseline: formatted bytes, write(), fsync, rename", savedRowCount,
             [this] { bench::writeFormattedBytes(barePath_, bytes_); }, clear},
            {"EyeTrackingCSV::saveFile", savedRowCount, [this] { recording_.saveFile(); }, clear},
        };
    }

private:
    const QString recordingPath_;
    const std::string barePath_;
    EyeTrackingCSV recording_;
    const std::vector<EyeTrackingSample> samples_;
    std::string bytes_;
    std::string headerLine_;
};

bool measureSaving(int rounds) {
    const QTemporaryDir folder;
    Saving saving(folder.path());
    if (!saving.sameBytes()) {
        std::fprintf(stderr, "the bare writer and the recording write different bytes\n");
        return false;
    }
    const std::vector<bench::Measurement> results = bench::interleave(saving.candidates(), rounds);
    bench::print("Saving " + std::to_string(savedRowCount) + " rows of " + std::to_string(saving.bytesPerRow()) +
                     " bytes in " + folder.path().toStdString(),
                 results);
    const std::vector<double> &saved = results.back().nanoseconds;
    std::printf("speed of saveFile: %.2f of the writer that formats, %.2f of the writer of formatted bytes\n",
                1 / bench::medianRatio(saved, results[0].nanoseconds),
                1 / bench::medianRatio(saved, results[1].nanoseconds));
    return true;
}

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const int rounds = bench::roundsFrom(argc, argv, defaultRoundCount);
    measureMemory();
    return measureSaving(rounds) ? 0 : 1;
}
