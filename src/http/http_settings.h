#pragma once

#include <QString>
#include <mutex>

class QSettings;

/// Reads the engine's settings group. May be used from any thread: a mutex serialises the reads, because QSettings is
/// not thread-safe. Values must be changed in the listener's thread.
class HttpSettings {
public:
    /// `settings` must be positioned on the engine's group and exist until detach() is called.
    explicit HttpSettings(const QSettings *settings) : settings_(settings) {}

    /// Returns the integer value of `key`, `defaultValue` if it is not set, or 0 if its value is not an integer.
    [[nodiscard]] int number(const QString &key, int defaultValue) const;
    [[nodiscard]] QString text(const QString &key) const;
    [[nodiscard]] bool flag(const QString &key) const;

    /// Returns `path` made absolute against the folder of the settings file. Settings in the platform's native format
    /// have no such folder, so `path` is returned unchanged.
    [[nodiscard]] QString resolvedPath(const QString &path) const;

    /// Stops using the QSettings object, which may be destroyed afterwards. All values are then the defaults.
    void detach();

private:
    const QSettings *settings_;  ///< null after detach()
    mutable std::mutex mutex_;
};
