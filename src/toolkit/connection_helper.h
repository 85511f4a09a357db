#pragma once

#include <QMetaObject>
#include <vector>

/// A list of signal connections that are severed together.
///
/// Whoever connects puts the result of `connect()` in with `<<`; `clear()` and the destructor disconnect all
/// of them. Owned by value by the object that makes the connections and used on that object's thread.
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
