#include "core/record_description.h"

#include "core/eye_tracking_csv.h"
#include "core/origins_csv.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// Increase it when a program that reads only the old format would misunderstand the new one.
constexpr int format = 1;

constexpr char startKey[] = "startUtc";
constexpr char trackerKey[] = "tracker";

QString startUtc(const JournalInfo &info) {
    return QDateTime::fromMSecsSinceEpoch(info.startUtcMs, Qt::UTC).toString(Qt::ISODateWithMs);
}

QJsonValue toJson(const std::optional<double> &value) {
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonValue toJson(const QRect &area) {
    if (area.isEmpty())
        return QJsonValue();
    return QJsonObject{{"x", area.x()}, {"y", area.y()}, {"width", area.width()}, {"height", area.height()}};
}

QJsonArray toJson(const std::vector<RecordColumn> &columns) {
    QJsonArray array;
    for (const RecordColumn &column : columns)
        array.append(QJsonObject{{"name", column.name}, {"unit", column.unit}});
    return array;
}

}  // namespace

QByteArray record_description::toJson(const JournalInfo &info, const RecordingStatistics &statistics) {
    const QJsonObject validShare{
        {"combined", ::toJson(statistics.validShare())},
        {"left", ::toJson(statistics.leftValidShare())},
        {"right", ::toJson(statistics.rightValidShare())},
    };
    const QJsonObject object{
        {"format", format},
        {startKey, startUtc(info)},
        {trackerKey, info.tracker},
        {"programVersion", info.programVersion},
        {"screenPx", ::toJson(info.screen)},
        {"calibratedAreaPx", ::toJson(info.calibratedArea)},
        // No tracker reports its rate yet.
        {"nominalRateHz", QJsonValue()},
        {"measuredRateHz", ::toJson(statistics.rateHz())},
        {"sampleCount", static_cast<qint64>(statistics.sampleCount())},
        {"durationMs", ::toJson(statistics.durationMs())},
        {"validShare", validShare},
        {"longestGapMs", ::toJson(statistics.longestGapMs())},
        {"rightEyeCrossed", statistics.isRightEyeCrossed()},
        {"recovered", info.isRecovered},
        {"systemClockStepped", info.systemClockStepped},
        {"columns", ::toJson(EyeTrackingCSV::columns())},
        {"samplesColumns", ::toJson(origins_csv::columns())},
    };
    return QJsonDocument(object).toJson();
}

bool record_description::describes(const QByteArray &json, const JournalInfo &info) {
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    return object[startKey] == startUtc(info) && object[trackerKey] == info.tracker;
}
