#pragma once

#include "http/byte_stream.h"
#include "http/unique_socket.h"

#include <atomic>
#include <memory>

/// A TCP connection that calls the operating system's socket functions directly.
///
/// QTcpSocket would cost more per request: it polls before it reads, copies all data once more in both directions, and
/// cannot send several buffers in one call.
class PlainStream : public ByteStream {
public:
    /// Returns null on failure. `stopping` must outlive the stream.
    [[nodiscard]] static std::unique_ptr<PlainStream> open(UniqueSocket socket, const std::atomic<bool> &stopping);
    ~PlainStream() override = default;
    PlainStream(const PlainStream &) = delete;
    PlainStream &operator=(const PlainStream &) = delete;

    [[nodiscard]] qint64 read(char *to, qint64 capacity, const QDeadlineTimer &deadline) override;
    bool write(const QVector<QByteArray> &pieces) override;
    bool writeFile(const QByteArray &head, QFile &file, qint64 offset, qint64 sizeBytes) override;
    [[nodiscard]] bool isWritable() const override { return !failed_ && !stopping_; }
    void limitSendBuffer(int bytes) override;
    void shutdownWriting() override;
    [[nodiscard]] QHostAddress peerAddress() const override;

private:
    PlainStream(UniqueSocket socket, const std::atomic<bool> &stopping)
        : socket_(std::move(socket)), stopping_(stopping) {}

    [[nodiscard]] bool send(const QVector<QByteArray> &pieces, system_calls::Following following);
    void endWait(TransferRate::Clock::time_point begin, qint64 result, bool finished);

    const UniqueSocket socket_;
    const std::atomic<bool> &stopping_;
};
