#pragma once

#include <QByteArray>
#include <QMap>
#include <QVariant>
#include <memory>

/// What is kept about one client between its requests: a handle. Copies share one record, which ends with the last of
/// them. Each copy belongs to one thread, the record may be used by many at a time.
class HttpSession {
public:
    /// An invalid session: no id, no values, and it keeps none.
    HttpSession() = default;
    /// A new session. Times are milliseconds since the epoch.
    HttpSession(const QByteArray &id, qint64 lastAccess);

    [[nodiscard]] bool isNull() const { return !data_; }
    [[nodiscard]] QByteArray getId() const;
    /// 0 for an invalid session.
    [[nodiscard]] qint64 getLastAccess() const;
    void setLastAccess(qint64 lastAccess);

    [[nodiscard]] QVariant value(const QByteArray &key) const;
    void setValue(const QByteArray &key, const QVariant &value);

private:
    struct Data;

    std::shared_ptr<Data> data_;  ///< counts the handles, too
};
