#include "http/http_session_store.h"

#include "http/http_log.h"

#include <QUuid>

HttpSessionStore::HttpSessionStore(qint64 expirationTimeMs, const Clock &clock, QObject *parent)
    : QObject(parent), expirationTimeMs_(expirationTimeMs), clock_(clock) {}

HttpSession HttpSessionStore::createSession() {
    HttpSession session(QUuid::createUuid().toByteArray(QUuid::WithoutBraces), clock_());
    const std::lock_guard<std::mutex> lock(mutex_);
    sessions_.insert(session.getId(), session);
    return session;
}

HttpSession HttpSessionStore::getSession(const QByteArray &id) {
    const std::lock_guard<std::mutex> lock(mutex_);
    HttpSession session = sessions_.value(id);
    session.setLastAccess(clock_());
    return session;
}

// Emits the signal without the lock, because receivers may use the store.
void HttpSessionStore::sessionTimerEvent() {
    for (const HttpSession &session : takeExpired()) {
        const QByteArray id = session.getId();
        qCDebug(lcHttp, "HttpSessionStore: session %s expired", id.constData());
        Q_EMIT sessionDeleted(id);
    }
}

QList<HttpSession> HttpSessionStore::takeExpired() {
    QList<HttpSession> expired;
    const std::lock_guard<std::mutex> lock(mutex_);
    const qint64 now = clock_();
    for (auto session = sessions_.begin(); session != sessions_.end();) {
        const bool keep = now - session->getLastAccess() <= expirationTimeMs_;
        if (!keep)
            expired.append(*session);
        session = keep ? session + 1 : sessions_.erase(session);
    }
    return expired;
}
