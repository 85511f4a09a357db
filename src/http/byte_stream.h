#pragma once

#include "http/system_calls.h"
#include "http/transfer_rate.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHostAddress>
#include <QVector>
#include <chrono>

class QFile;

/// The sending direction of a connection.
class HttpOutput {
public:
    virtual ~HttpOutput() = default;

    /// Sends the pieces in order. Blocks until the system has accepted all data. Returns false if the connection has
    /// failed, or if the client reads too slowly. Later calls then do nothing.
    virtual bool write(const QVector<QByteArray> &pieces) = 0;
    /// Sends `head`, and then `sizeBytes` bytes of an open file from `offset` on. Returns false if the connection or
    /// the file has failed, or if the file is shorter.
    virtual bool writeFile(const QByteArray &head, QFile &file, qint64 offset, qint64 sizeBytes);
    /// Returns whether data can still be sent: no write has failed, and the server is not stopping.
    [[nodiscard]] virtual bool isWritable() const = 0;
    /// Limits the system's buffer for unsent data, so that a client that stops reading is noticed early.
    virtual void limitSendBuffer(int bytes) = 0;
    /// Lets the client of this response stop reading for up to `maxPause`. No reading rate is required any more.
    virtual void allowPauses(std::chrono::milliseconds /*maxPause*/) {}
};

/// A connection to a client, plain or encrypted, with blocking calls. Used only in the thread of its
/// connection handler. Blocking in the system call is the fastest way to serve a request. The destructor closes the
/// connection.
///
/// Blocking calls check every 250 ms whether the server is stopping, and then return as if the client had disconnected.
class ByteStream : public HttpOutput {
public:
    /// Results of read() other than a number of bytes.
    enum : qint64 { TimedOut = 0, Closed = -1 };

    /// Waits for data and stores up to `capacity` bytes. Returns their number, `TimedOut`, or `Closed` if the client
    /// has closed the connection or the connection has failed.
    [[nodiscard]] virtual qint64 read(char *to, qint64 capacity, const QDeadlineTimer &deadline) = 0;
    /// Closes the sending direction. The client still receives everything that was written before.
    virtual void shutdownWriting() = 0;
    [[nodiscard]] virtual QHostAddress peerAddress() const = 0;
    bool writeFile(const QByteArray &head, QFile &file, qint64 offset, qint64 sizeBytes) override;
    /// Returns whether a write has failed. Later writes do nothing.
    [[nodiscard]] bool hasFailed() const { return failed_; }
    /// Lets writes fail if the client reads less than `minBytes` in a `window` of waiting for it. A window of 0 is no
    /// limit, which is the default.
    void requireReadingRate(std::chrono::milliseconds window, qint64 minBytes) {
        readingRate_.restart(window, minBytes);
    }
    void allowPauses(std::chrono::milliseconds maxPause) override { readingRate_.restart(maxPause, 1); }

protected:
    /// Measures a wait for the client to read. `writtenBytes` were given to the system in this wait. Called again and
    /// again while the client does not read.
    void addWait(TransferRate::Clock::time_point begin, qint64 writtenBytes, tSocketDescriptor socket);

    bool failed_ = false;
    TransferRate readingRate_;  ///< of the client

private:
    qint64 writtenBytes_ = 0;  ///< since the connection was opened
};
