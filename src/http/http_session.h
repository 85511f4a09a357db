#pragma once

#include <QByteArray>
#include <QMap>
#include <QVariant>
#include <memory>

/// A handle to the data kept for one client between its requests. Copies share the data, which is deleted with the last
/// copy. A handle must be used by one thread at a time; copies may be used concurrently.
class HttpSession {
public:
    /// Creates an invalid session, which has no id and ignores values.
    HttpSession() = default;
    /// Times are in milliseconds since the epoch.
    HttpSession(const QByteArray &id, qint64 lastAccess);

    [[nodiscard]] bool isNull() const { return !data_; }
    [[nodiscard]] QByteArray getId() const;
    /// Returns 0 for an invalid session.
    [[nodiscard]] qint64 getLastAccess() const;
    void setLastAccess(qint64 lastAccess);

    [[nodiscard]] QVariant value(const QByteArray &key) const;
    void setValue(const QByteArray &key, const QVariant &value);

private:
    struct Data;

    std::shared_ptr<Data> data_;
};
