#include "http/http_settings.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

int HttpSettings::number(const QString &key, int defaultValue) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return settings_ ? settings_->value(key, defaultValue).toInt() : defaultValue;
}

QString HttpSettings::text(const QString &key) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return settings_ ? settings_->value(key).toString() : QString();
}

bool HttpSettings::flag(const QString &key) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return settings_ && settings_->value(key, "false").toBool();
}

QString HttpSettings::resolvedPath(const QString &path) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (path.isEmpty() || !settings_ || settings_->format() == QSettings::NativeFormat)
        return path;
    return QFileInfo(settings_->fileName()).absoluteDir().absoluteFilePath(path);
}

void HttpSettings::detach() {
    const std::lock_guard<std::mutex> lock(mutex_);
    settings_ = nullptr;
}
