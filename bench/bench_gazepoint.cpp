// Measures the time to parse a GazePoint record to a sample, with records captured from real servers.

#include "support/rounds.h"
#include "support/splitting_parser.h"
#include "trackers/gazepoint/gazepoint_record_reader.h"

#include <QFile>
#include <QVector>
#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t recordsPerRound = 20000;
constexpr int fullRecordAttributeCount = 40;
constexpr QSize screen(1920, 1080);

using Records = QVector<QByteArray>;

/// Returns the captured records that have at least `minAttributeCount` attributes, with the line ends of the protocol.
Records capturedRecords(int minAttributeCount) {
    QFile file(OCELA_BENCH_LINES);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qUtf8Printable(file.fileName()));
    Records records;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("<REC") && line.count('=') >= minAttributeCount)
            records.append(line + "\r\n");
    }
    return records;
}

EyeTrackingSample parse(const QByteArray &record, qint64 now) {
    const std::string_view message(record.constData(), static_cast<std::size_t>(record.size()));
    if (gazepoint::kindOf(message) != gazepoint::Message::Record)
        return {};
    return gazepoint::parseRecord(message, screen, now);
}

EyeTrackingSample parseWithSplit(const QByteArray &record, qint64 now) {
    return bench::parseBySplitting(record, screen, now);
}

bool sameSample(const EyeTrackingSample &one, const EyeTrackingSample &other) {
    return one.toJson() == other.toJson() && one.l_valid == other.l_valid && one.r_valid == other.r_valid;
}

/// The comparison is valid only if both parsers return the same samples.
bool parsersAgree(const Records &records) {
    return std::all_of(records.begin(), records.end(), [](const QByteArray &record) {
        return sameSample(parse(record, 1), parseWithSplit(record, 1));
    });
}

template <typename Parse>
bench::Candidate candidate(const char *name, const Records &records, Parse parser) {
    const auto run = [records, parser] {
        for (std::size_t i = 0; i < recordsPerRound; ++i)
            bench::keep(parser(records[static_cast<int>(i) % records.size()], static_cast<qint64>(i)));
    };
    return {name, recordsPerRound, run, {}};
}

void compare(const QString &title, const Records &records, int rounds) {
    bench::print(qUtf8Printable(title.arg(records.size())),
                 bench::interleave({candidate("baseline: the same rules with QString::split", records, parseWithSplit),
                                    candidate("gazepoint::kindOf and parseRecord", records, parse)},
                                   rounds));
}

}  // namespace

int main(int argc, char *argv[]) {
    const int rounds = bench::roundsFrom(argc, argv, 31);
    const Records all = capturedRecords(0);
    const Records full = capturedRecords(fullRecordAttributeCount);
    if (full.isEmpty() || !parsersAgree(all)) {
        std::fprintf(stderr, "no captured records, or the baseline reads them differently\n");
        return 1;
    }
    compare("GazePoint records with at least 40 attributes (%1 captured)", full, rounds);
    compare("All captured GazePoint records (%1)", all, rounds);
}
