#include "toolkit/base/connection_helper.h"

#include <QObject>

ConnectionHelper::~ConnectionHelper() {
    clear();
}

ConnectionHelper &ConnectionHelper::operator<<(const QMetaObject::Connection &connection) {
    connections_.push_back(connection);
    return *this;
}

void ConnectionHelper::clear() {
    for (const QMetaObject::Connection &connection : connections_)
        QObject::disconnect(connection);
    connections_.clear();
}
