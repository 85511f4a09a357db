#include "http/http_session.h"

#include "http/http_log.h"

#include <mutex>
#include <shared_mutex>

struct HttpSession::Data {
    Data(const QByteArray &sessionId, qint64 time) : id(sessionId), lastAccess(time) {}
    Data(const Data &) = delete;
    Data &operator=(const Data &) = delete;
    ~Data() { qCDebug(lcHttp, "HttpSession: deleting data"); }

    const QByteArray id;
    qint64 lastAccess;
    std::shared_mutex lock;  ///< guards lastAccess and values
    QMap<QByteArray, QVariant> values;
};

HttpSession::HttpSession(const QByteArray &id, qint64 lastAccess) : data_(std::make_shared<Data>(id, lastAccess)) {}

QByteArray HttpSession::getId() const {
    return data_ ? data_->id : QByteArray();
}

qint64 HttpSession::getLastAccess() const {
    if (!data_)
        return 0;
    const std::shared_lock<std::shared_mutex> reading(data_->lock);
    return data_->lastAccess;
}

void HttpSession::setLastAccess(qint64 lastAccess) {
    if (!data_)
        return;
    const std::unique_lock<std::shared_mutex> writing(data_->lock);
    data_->lastAccess = lastAccess;
}

QVariant HttpSession::value(const QByteArray &key) const {
    if (!data_)
        return {};
    const std::shared_lock<std::shared_mutex> reading(data_->lock);
    return data_->values.value(key);
}

void HttpSession::setValue(const QByteArray &key, const QVariant &value) {
    if (!data_)
        return;
    const std::unique_lock<std::shared_mutex> writing(data_->lock);
    data_->values.insert(key, value);
}
