#pragma once

#include "http/http_session.h"

#include <QDateTime>
#include <QObject>
#include <functional>
#include <mutex>

/// The sessions of a server by their id, until nobody has used them for a while. For use from any thread.
class HttpSessionStore : public QObject {
    Q_OBJECT

public:
    using Clock = std::function<qint64()>;

    /// `expirationTime` in milliseconds; `clock` gives milliseconds since the epoch.
    explicit HttpSessionStore(qint64 expirationTime, const Clock &clock = &QDateTime::currentMSecsSinceEpoch,
                              QObject *parent = nullptr);

    /// A session with an id that nobody can guess.
    [[nodiscard]] HttpSession createSession();
    /// Counts as an access. Invalid if there is none (any more) under this id.
    [[nodiscard]] HttpSession getSession(const QByteArray &id);

Q_SIGNALS:
    /// Comes from the thread that runs sessionTimerEvent(), when the store does not know the session any more.
    void sessionDeleted(const QByteArray &sessionId);

public Q_SLOTS:
    /// Drops the sessions whose last access lies back more than the expiration time. To be called now and then.
    void sessionTimerEvent();

private:
    [[nodiscard]] QList<HttpSession> takeExpired();

    const qint64 expirationTime_;
    const Clock clock_;
    std::mutex mutex_;  ///< guards sessions_
    QMap<QByteArray, HttpSession> sessions_;
};
