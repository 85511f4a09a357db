#include "subject/recording.h"

#include "gaze/crossed_eye.h"
#include "toolkit/table/csv_text.h"

#include <QFile>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace sim {

namespace {

/// Trackers write 0, 0 for an eye without gaze.
bool isMeasured(const Eye &eye) {
    return eye.gaze.x != 0 || eye.gaze.y != 0;
}

}  // namespace

/// Converts the records of a file into rows, up to the first error.
class Recording::Reader {
public:
    explicit Reader(const QList<csv::Record> &records) : records_(records) {
        if (!records_.isEmpty())
            header_ = records_.takeFirst().fields;
        for (const char *name : {"Time", "Valid", "X", "Y"}) {
            if (!header_.contains(name))
                fail(QString("the column \"%1\" is missing").arg(name));
        }
    }

    std::vector<Row> rows() {
        std::vector<Row> rows;
        double lastTime_s = -std::numeric_limits<double>::infinity();
        for (const csv::Record &record : std::as_const(records_)) {
            if (!error_.isEmpty())
                break;
            rows.push_back(row(record));
            if (rows.back().time_s < std::exchange(lastTime_s, rows.back().time_s))
                fail(QString("line %1: the time is earlier than in the row before").arg(record.line));
        }
        if (rows.empty())
            fail("it has no rows");
        return rows;
    }

    /// Returns the first error, or an empty string.
    [[nodiscard]] const QString &error() const { return error_; }

private:
    Row row(const csv::Record &record) {
        Row result;
        const bool visible = cell(record, "Valid") != 0;
        result.time_s = cell(record, "Time") / 1000;
        result.combined = percentPoint(record, "X", "Y");
        result.state.left = eye(record, "L_", visible);
        result.state.right = eye(record, "R_", visible);
        result.state.distance_cm = cell(record, "Distance_cm");
        return result;
    }

    Eye eye(const csv::Record &record, const QString &prefix, bool visible) {
        Eye result;
        result.visible = visible;
        result.gaze = percentPoint(record, prefix + "X", prefix + "Y");
        result.pupil_mm = cell(record, prefix + "Pupil_mm");
        return result;
    }

    Point percentPoint(const csv::Record &record, const QString &x, const QString &y) {
        return {cell(record, x) / 100, cell(record, y) / 100};
    }

    /// Returns 0 for a column that the file does not have.
    double cell(const csv::Record &record, const QString &name) {
        const int column = header_.indexOf(name);
        if (column < 0)
            return 0;
        bool ok = false;
        const double value = record.fields.value(column).toDouble(&ok);
        if (!ok || !std::isfinite(value))
            fail(QString("line %1: the column \"%2\" is not a number").arg(record.line).arg(name));
        return value;
    }

    void fail(const QString &reason) {
        if (error_.isEmpty())
            error_ = reason;
    }

    QList<csv::Record> records_;
    QStringList header_;
    QString error_;
};

std::variant<Recording, QString> Recording::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString("cannot read %1: %2").arg(path, file.errorString());
    Reader reader(csv::parse(QString::fromUtf8(file.readAll()), ','));
    Recording recording;
    recording.rows_ = reader.rows();
    if (!reader.error().isEmpty())
        return QString("%1 is not a record file: %2").arg(path, reader.error());
    recording.uncrossRightEye();
    recording.fillMissingGaze();
    return recording;
}

double Recording::duration_s() const {
    const auto rowCount = static_cast<double>(rows_.size());
    const double span_s = rows_.back().time_s - rows_.front().time_s;
    return rowCount > 1 ? span_s * rowCount / (rowCount - 1) : 0;
}

const EyeState &Recording::at(double seconds) const {
    const double time_s = rows_.front().time_s + seconds;
    const auto later = std::upper_bound(rows_.begin(), rows_.end(), time_s,
                                        [](double value, const Row &row) { return value < row.time_s; });
    return later == rows_.begin() ? later->state : std::prev(later)->state;
}

void Recording::uncrossRightEye() {
    CrossedEye rightEye;
    for (const Row &row : rows_) {
        if (row.state.right.visible && isMeasured(row.state.right))
            rightEye.add({row.combined.x, row.combined.y}, {row.state.right.gaze.x, row.state.right.gaze.y});
    }
    if (!rightEye.crossed())
        return;
    for (Row &row : rows_)
        std::swap(row.state.right.gaze.x, row.state.right.gaze.y);
}

void Recording::fillMissingGaze() {
    for (Row &row : rows_) {
        for (Eye *eye : {&row.state.left, &row.state.right}) {
            if (!isMeasured(*eye))
                eye->gaze = row.combined;
        }
    }
}

}  // namespace sim
