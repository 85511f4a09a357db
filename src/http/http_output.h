#pragma once

#include <QByteArray>
#include <QVector>

/// Where a response goes: the sending half of a connection. Used by the connection's own thread.
class HttpOutput {
public:
    virtual ~HttpOutput() = default;

    /// Sends the pieces one after the other, in one system call as long as the peer's window has room for them, and
    /// waits without limit until all are handed over. False when the connection is gone; later calls do nothing then.
    virtual bool write(const QVector<QByteArray> &pieces) = 0;
};
