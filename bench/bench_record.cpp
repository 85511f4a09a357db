// What a record costs: its memory while it runs, and the time to save it.

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

constexpr std::size_t samplesInMemory = 1000000;
constexpr std::size_t variantRowsInMemory = 100000;
constexpr int memoryRounds = 3;
constexpr std::size_t savedRows = 500000;

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

void fillVariants(BytesPerRow &result, const std::vector<EyeTrackingSample> &samples) {
    const bench::Memory before = bench::memoryInUse();
    QList<QVariantList> rows;
    for (std::size_t i = 0; i < variantRowsInMemory; ++i)
        rows.append(variantRow(samples[i]));
    result.add(before, bench::memoryInUse(), variantRowsInMemory);
}

void fillRecord(BytesPerRow &result, const std::vector<EyeTrackingSample> &samples) {
    const bench::Memory before = bench::memoryInUse();
    EyeTrackingCSV record(QString(), false);
    for (const EyeTrackingSample &sample : samples)
        record.addSample(sample);
    result.add(before, bench::memoryInUse(), samples.size());
}

void measureMemory() {
    const std::vector<EyeTrackingSample> samples = bench::typicalSamples(samplesInMemory);
    BytesPerRow variants;
    BytesPerRow record;
    for (int round = 0; round < memoryRounds; ++round) {
        fillVariants(variants, samples);
        fillRecord(record, samples);
    }
    std::printf("Memory of a running record (%d rounds)\n%-58s %9s %9s\n", memoryRounds, "bytes per sample", "resident",
                "malloc");
    variants.print("baseline: QList<QVariantList>, 100,000 rows");
    record.print("EyeTrackingCSV, 1,000,000 rows");
    std::printf("x baseline %.2f\n", bench::medianRatio(record.resident, variants.resident));
}

std::string contentOf(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qUtf8Printable(path));
    return file.readAll().toStdString();
}

/// A record and two bare ways of writing its file, into one folder.
class Saving {
public:
    explicit Saving(const QString &folder)
        : recordPath_(folder + "/record.csv"),
          barePath_((folder + "/bare.csv").toStdString()),
          record_(recordPath_, false),
          samples_(bench::typicalSamples(savedRows)) {
        for (const EyeTrackingSample &sample : samples_)
            record_.addSample(sample);
        record_.saveFile();
        bytes_ = contentOf(recordPath_);
        headerLine_ = bytes_.substr(0, bytes_.find('\n') + 1);
    }

    /// Bare writers of other bytes would make no comparison.
    [[nodiscard]] bool sameBytes() const {
        bench::writeFormatted(barePath_, headerLine_, samples_);
        return contentOf(QString::fromStdString(barePath_)) == bytes_;
    }

    [[nodiscard]] std::size_t bytesPerRow() const { return bytes_.size() / savedRows; }

    [[nodiscard]] std::vector<bench::Contender> contenders() {
        // The files of the round before would be kept, and replacing them takes time of its own.
        const auto clear = [this] {
            QFile::remove(recordPath_);
            QFile::remove(QString::fromStdString(barePath_));
        };
        return {
            {"baseline: to_chars into a buffer, write(), no sync", savedRows,
             [this] { bench::writeFormatted(barePath_, headerLine_, samples_); }, clear},
            {"baseline: the finished bytes, write(), fsync, rename", savedRows,
             [this] { bench::writeReadyBytes(barePath_, bytes_); }, clear},
            {"EyeTrackingCSV::saveFile", savedRows, [this] { record_.saveFile(); }, clear},
        };
    }

private:
    const QString recordPath_;
    const std::string barePath_;
    EyeTrackingCSV record_;
    const std::vector<EyeTrackingSample> samples_;
    std::string bytes_;
    std::string headerLine_;
};

bool measureSaving(int rounds) {
    const QTemporaryDir folder;
    Saving saving(folder.path());
    if (!saving.sameBytes()) {
        std::fprintf(stderr, "the bare writer writes other bytes than the record\n");
        return false;
    }
    const std::vector<bench::Measurement> results = bench::interleave(saving.contenders(), rounds);
    bench::print("Saving " + std::to_string(savedRows) + " rows of " + std::to_string(saving.bytesPerRow()) +
                     " bytes in " + folder.path().toStdString(),
                 results);
    const std::vector<double> &saved = results.back().nanoseconds;
    std::printf("speed of saveFile: %.2f of the formatting writer, %.2f of the writer of finished bytes\n",
                1 / bench::medianRatio(saved, results[0].nanoseconds),
                1 / bench::medianRatio(saved, results[1].nanoseconds));
    return true;
}

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const int rounds = bench::roundsFrom(argc, argv, 11);
    measureMemory();
    return measureSaving(rounds) ? 0 : 1;
}
