#include "system/expected_row.h"

#include <QMap>
#include <QRegularExpression>
#include <QVariant>

namespace {

struct Gaze {
    float x;
    float y;
};

struct Record {
    explicit Record(const QByteArray &line) {
        static const QRegularExpression attribute(R"re( (\w+)="([^" ]*)")re");
        for (auto match = attribute.globalMatch(QString::fromLatin1(line)); match.hasNext();) {
            const auto found = match.next();
            values[found.captured(1)] = found.captured(2);
        }
    }

    [[nodiscard]] float number(const char *name) const { return values.value(name).toFloat(); }
    [[nodiscard]] bool flag(const char *name) const { return values.value(name) == "1"; }
    [[nodiscard]] Gaze best() const { return {number("FPOGX"), number("FPOGY")}; }
    [[nodiscard]] Gaze left() const { return {number("LPOGX"), number("LPOGY")}; }
    // The x and y of the right eye are exchanged; that is the defined behaviour.
    [[nodiscard]] Gaze right() const { return {number("RPOGY"), number("RPOGX")}; }

    QMap<QString, QString> values;
};

QString cell(float value) {
    return QVariant(value).toString();
}

float percent(float fraction) {
    return fraction * 100.0F;
}

int pixel(float fraction, int size) {
    return static_cast<int>(fraction * static_cast<float>(size));
}

QStringList gazeCells(Gaze gaze, QSize screen) {
    return {cell(percent(gaze.x)), cell(percent(gaze.y)), QString::number(pixel(gaze.x, screen.width())),
            QString::number(pixel(gaze.y, screen.height()))};
}

QStringList eyeCells(Gaze gaze, QSize screen, float pupil) {
    return gazeCells(gaze, screen) + QStringList{cell(pupil), "0", "0"};
}

QString oneDecimal(float value) {
    return QString::asprintf("%.1f", static_cast<double>(value));
}

}  // namespace

QStringList expected::cells(const QByteArray &line, QSize screen) {
    const Record record(line);
    return QStringList{record.flag("FPOGV") ? "1" : "0"} + gazeCells(record.best(), screen) + QStringList{"0"} +
           eyeCells(record.left(), screen, record.number("LPMM")) +
           eyeCells(record.right(), screen, record.number("RPMM")) + QStringList{"0"};
}

QStringList expected::windowTexts(const QByteArray &line, QSize screen) {
    const Record record(line);
    const Gaze best = record.best();
    QStringList texts{QString::asprintf("x:%6.1f%%", static_cast<double>(percent(best.x))),
                      QString::asprintf("y:%6.1f%%", static_cast<double>(percent(best.y))),
                      QString::asprintf("x:%5dpx", pixel(best.x, screen.width())),
                      QString::asprintf("y:%5dpx", pixel(best.y, screen.height())),
                      record.flag("FPOGV") ? "true" : "false",
                      QString(record.flag("LPV") ? "0" : "-") + (record.flag("RPV") ? "0" : "-"),
                      QString(oneDecimal(record.number("LPMM")) + "mm").rightJustified(9),
                      QString(oneDecimal(record.number("RPMM")) + "mm").rightJustified(9)};
    for (const Gaze eye : {record.left(), record.right()})
        texts << oneDecimal(percent(eye.x)) + '%' << oneDecimal(percent(eye.y)) + '%';
    return texts;
}
