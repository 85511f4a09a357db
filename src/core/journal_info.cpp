#include "core/journal_info.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <iterator>

namespace {

/// The number of the journal's format. Increase it when a program that knows only the old format would lose data.
constexpr int knownFormat = 1;

/// In the order of JournalPhase.
constexpr const char *phaseNames[] = {"recording", "saving", "saved", "discarded"};

QJsonArray toArray(const QRect &area) {
    return {area.x(), area.y(), area.width(), area.height()};
}

QRect toRect(const QJsonArray &array) {
    return {array.at(0).toInt(), array.at(1).toInt(), array.at(2).toInt(), array.at(3).toInt()};
}

std::optional<JournalPhase> phaseNamed(const QString &name) {
    for (std::size_t i = 0; i < std::size(phaseNames); ++i) {
        if (name == QLatin1String(phaseNames[i]))
            return static_cast<JournalPhase>(i);
    }
    return std::nullopt;
}

}  // namespace

QByteArray JournalInfo::toJson() const {
    const QJsonObject object{
        {"format", knownFormat},
        {"target", targetPath},
        {"tracker", tracker},
        {"startUtcMs", startUtcMs},
        {"programVersion", programVersion},
        {"screen", toArray(screen)},
        {"calibratedArea", toArray(calibratedArea)},
        {"described", isDescribed},
        {"systemClockStepped", systemClockStepped},
        {"phase", phaseNames[static_cast<std::size_t>(phase)]},
        {"savingPath", savingPath},
        {"recovered", isRecovered},
        {"savingRowCount", static_cast<qint64>(savingRowCount)},
    };
    return QJsonDocument(object).toJson();
}

ParsedJournalInfo parseJournalInfo(const QByteArray &json) {
    using Outcome = ParsedJournalInfo::Outcome;
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    if (!object["format"].isDouble())
        return {Outcome::Damaged, {}};
    if (object["format"].toInt() != knownFormat)
        return {Outcome::UnknownFormat, {}};
    const std::optional<JournalPhase> phase = phaseNamed(object["phase"].toString());
    JournalInfo info;
    info.targetPath = object["target"].toString();
    if (!phase || info.targetPath.isEmpty())
        return {Outcome::Damaged, {}};
    info.tracker = object["tracker"].toString();
    info.startUtcMs = static_cast<qint64>(object["startUtcMs"].toDouble());
    info.programVersion = object["programVersion"].toString();
    info.screen = toRect(object["screen"].toArray());
    info.calibratedArea = toRect(object["calibratedArea"].toArray());
    info.isDescribed = object["described"].toBool();
    info.systemClockStepped = object["systemClockStepped"].toBool();
    info.phase = *phase;
    info.savingPath = object["savingPath"].toString();
    info.isRecovered = object["recovered"].toBool();
    info.savingRowCount = static_cast<quint64>(object["savingRowCount"].toDouble());
    return {Outcome::Ok, info};
}
