#pragma once

#include <QString>
#include <mutex>

class QSettings;

/// The engine's view of its settings group. Values are read each time they are needed, from any thread: QSettings
/// objects are not made for that, so the reads are serialised here. Change values in the listener's thread.
class HttpSettings {
public:
    /// `settings` is positioned on the engine's group, stays the caller's and outlives this object.
    explicit HttpSettings(const QSettings *settings) : settings_(settings) {}

    /// The whole number under `key`; 0 for a text that is none.
    [[nodiscard]] int number(const QString &key, int otherwise) const;
    [[nodiscard]] QString text(const QString &key) const;
    [[nodiscard]] bool flag(const QString &key) const;

    /// `path`, if relative, taken from the folder of the settings file. Settings in the platform's native format have
    /// no such folder: their paths stay as they are.
    [[nodiscard]] QString resolvedPath(const QString &path) const;

private:
    const QSettings *const settings_;
    mutable std::mutex mutex_;
};
