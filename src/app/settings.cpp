#include "app/settings.h"

#include <utility>

Settings::Settings(QString filePath, QStringList languages, QObject *parent)
    : SettingsWithLanguage(std::move(filePath), true, std::move(languages), parent) {}

QString Settings::dataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}
