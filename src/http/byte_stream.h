#pragma once

#include "http/http_output.h"

#include <QDeadlineTimer>
#include <QHostAddress>

/// A client's connection, plain or encrypted, with calls that block: each connection has a thread of its own, so
/// waiting in the system call itself is the shortest way from a request to its answer. Used by that thread alone;
/// closes the connection when it is destroyed.
///
/// Calls that wait look every quarter of a second whether the server is being closed, and then return as if the client
/// had gone.
class ByteStream : public HttpOutput {
public:
    /// What read() returns besides a number of bytes.
    enum : qint64 { TimedOut = 0, Ended = -1 };

    /// Waits for bytes and stores at most `capacity` of them; returns their number. `Ended`: the client has closed or
    /// lost the connection.
    [[nodiscard]] virtual qint64 read(char *to, qint64 capacity, const QDeadlineTimer &deadline) = 0;
    /// Ends the sending direction: the client reads everything that was written, then an end.
    virtual void endWriting() = 0;
    [[nodiscard]] virtual QHostAddress peerAddress() const = 0;
    /// Whether a write has failed. What is written after that goes nowhere.
    [[nodiscard]] bool isGone() const { return gone_; }

protected:
    bool gone_ = false;
};
