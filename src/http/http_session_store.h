#pragma once

#include "http/http_session.h"

#include <QDateTime>
#include <QObject>
#include <functional>
#include <mutex>

/// The sessions of a server by id. Sessions expire after a time without access. May be used from any thread.
class HttpSessionStore : public QObject {
    Q_OBJECT

public:
    using Clock = std::function<qint64()>;

    /// `clock` returns milliseconds since the epoch.
    explicit HttpSessionStore(qint64 expirationTimeMs, const Clock &clock = &QDateTime::currentMSecsSinceEpoch,
                              QObject *parent = nullptr);

    /// Creates a session with a random, unguessable id.
    [[nodiscard]] HttpSession createSession();
    /// Returns the session with this id, or an invalid session if there is none. Counts as an access.
    [[nodiscard]] HttpSession getSession(const QByteArray &id);

Q_SIGNALS:
    /// Emitted by sessionTimerEvent() in its thread, after the session has been removed.
    void sessionDeleted(const QByteArray &sessionId);

public Q_SLOTS:
    /// Removes expired sessions. Must be called periodically.
    void sessionTimerEvent();

private:
    [[nodiscard]] QList<HttpSession> takeExpired();

    const qint64 expirationTimeMs_;
    const Clock clock_;
    std::mutex mutex_;  ///< guards sessions_
    QMap<QByteArray, HttpSession> sessions_;
};
