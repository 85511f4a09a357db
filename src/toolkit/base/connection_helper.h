#pragma once

#include <QMetaObject>
#include <vector>

/// A list of signal connections that are disconnected together, by clear() or by the destructor.
///
/// Add the result of `connect()` with `<<`. Make the list a member of the object that connects, and use it in the
/// thread of that object.
class ConnectionHelper {
public:
    ConnectionHelper() = default;
    ~ConnectionHelper();
    ConnectionHelper(const ConnectionHelper &) = delete;
    ConnectionHelper &operator=(const ConnectionHelper &) = delete;

    ConnectionHelper &operator<<(const QMetaObject::Connection &connection);

    void clear();

private:
    std::vector<QMetaObject::Connection> connections_;
};
