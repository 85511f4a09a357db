#include "gazepoint/truth_file.h"

#include <QByteArray>
#include <chrono>

namespace sim::gazepoint {

namespace {

constexpr int decimals = 3;

double utcNow_ms() {
    return std::chrono::duration<double, std::milli>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

TruthFile::TruthFile(const QString &path) : file_(path), startUtc_ms_(utcNow_ms()) {}

bool TruthFile::open() {
    return file_.open(QIODevice::WriteOnly) && file_.write("Start_ms,End_ms,X,Y\r\n") > 0 && file_.flush();
}

void TruthFile::add(const PathFixation &fixation) {
    QByteArray row;
    for (const double value : {startUtc_ms_ + fixation.start_s * 1000, startUtc_ms_ + fixation.end_s * 1000,
                               fixation.position.x * 100, fixation.position.y * 100})
        row += (row.isEmpty() ? "" : ",") + QByteArray::number(value, 'f', decimals);
    file_.write(row + "\r\n");
    file_.flush();
}

}  // namespace sim::gazepoint
