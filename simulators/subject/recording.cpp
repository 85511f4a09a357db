#include "subject/recording.h"

#include <QFile>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <utility>

namespace sim {

namespace {

/// Splits one line at the commas outside double quotes. The quotes are dropped: no name or number holds one.
QStringList splitLine(const QString &line) {
    QStringList cells{QString()};
    bool quoted = false;
    for (const QChar c : line) {
        if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            cells << QString();
        } else {
            cells.last() += c;
        }
    }
    return cells;
}

double distance(Point a, Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

/// Reads one file; stops at the first line that makes no sense and says which.
class Recording::Reader {
public:
    explicit Reader(QFile *file) : file_(file) {}

    bool readHeader() {
        QString line = nextLine();
        if (line.startsWith(QChar::ByteOrderMark))
            line.remove(0, 1);
        header_ = splitLine(line);
        for (const char *name : {"Time", "Valid", "X", "Y"}) {
            if (!header_.contains(name))
                return fail(QString("the column \"%1\" is missing").arg(name));
        }
        return true;
    }

    bool readRows(std::vector<Row> *rows) {
        while (!file_->atEnd()) {
            cells_ = splitLine(nextLine());
            if (cells_ == QStringList{QString()})
                continue;
            rows->push_back(row());
            if (!error_.isEmpty())
                return false;
        }
        const auto earlier = [](const Row &a, const Row &b) { return a.time < b.time; };
        if (!std::is_sorted(rows->begin(), rows->end(), earlier))
            return fail("its times run backwards");
        return !rows->empty() || fail("it holds no rows");
    }

    [[nodiscard]] const QString &error() const { return error_; }

private:
    QString nextLine() {
        ++line_;
        QString line = QString::fromUtf8(file_->readLine());
        while (line.endsWith('\n') || line.endsWith('\r'))
            line.chop(1);
        return line;
    }

    bool fail(const QString &reason) {
        error_ = reason;
        return false;
    }

    double cell(const QString &name) {
        const int column = header_.indexOf(name);
        if (column < 0)
            return 0;
        bool ok = false;
        const double value = cells_.value(column).toDouble(&ok);
        if (!ok || !std::isfinite(value))
            fail(QString("line %1: the column \"%2\" holds no number").arg(line_).arg(name));
        return value;
    }

    Point percentPoint(const QString &x, const QString &y) { return {cell(x) / 100, cell(y) / 100}; }

    Eye eye(const QString &prefix, Point fallback, bool visible) {
        Eye result;
        result.visible = visible;
        result.gaze = percentPoint(prefix + "X", prefix + "Y");
        if (result.gaze.x == 0 && result.gaze.y == 0)
            result.gaze = fallback;
        result.pupil_mm = cell(prefix + "Pupil_mm");
        return result;
    }

    Row row() {
        Row result;
        const bool visible = cell("Valid") != 0;
        result.time = cell("Time") / 1000;
        result.combined = percentPoint("X", "Y");
        result.state.left = eye("L_", result.combined, visible);
        result.state.right = eye("R_", result.combined, visible);
        result.state.distance_cm = cell("Distance_cm");
        return result;
    }

    QFile *file_;
    QStringList header_;
    QStringList cells_;
    QString error_;
    int line_ = 0;
};

std::optional<Recording> Recording::load(const QString &path, QString *error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QString("cannot read %1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    Recording recording;
    Reader reader(&file);
    if (!reader.readHeader() || !reader.readRows(&recording.rows_)) {
        *error = QString("%1 is no recording: %2").arg(path, reader.error());
        return std::nullopt;
    }
    recording.uncrossRightEye();
    return recording;
}

double Recording::duration() const {
    const auto rows = static_cast<double>(rows_.size());
    const double span = rows_.back().time - rows_.front().time;
    return rows > 1 ? span * rows / (rows - 1) : 0;
}

const EyeState &Recording::at(double seconds) const {
    const double time = rows_.front().time + seconds;
    const auto later = std::upper_bound(rows_.begin(), rows_.end(), time,
                                        [](double value, const Row &row) { return value < row.time; });
    return later == rows_.begin() ? later->state : std::prev(later)->state;
}

/// Records of some tracker families hold the right eye's two coordinates crossed. The file does not tell the
/// family, but the combined point does: uncross them when that brings the right eye closer to it over the
/// whole recording.
void Recording::uncrossRightEye() {
    double asWritten = 0, crossed = 0;
    for (const Row &row : rows_) {
        const Point gaze = row.state.right.gaze;
        asWritten += distance(gaze, row.combined);
        crossed += distance({gaze.y, gaze.x}, row.combined);
    }
    if (crossed >= asWritten)
        return;
    for (Row &row : rows_)
        std::swap(row.state.right.gaze.x, row.state.right.gaze.y);
}

}  // namespace sim
