#pragma once

#include "http/byte_stream.h"
#include "http/unique_socket.h"

#include <QSslSocket>
#include <atomic>
#include <memory>

class QSslConfiguration;

/// A TLS connection. The first read() does the handshake.
class TlsStream : public ByteStream {
public:
    /// Returns null on failure. `stopping` must outlive the stream.
    [[nodiscard]] static std::unique_ptr<TlsStream> open(UniqueSocket socket, const QSslConfiguration &configuration,
                                                         const std::atomic<bool> &stopping);
    ~TlsStream() override;

    [[nodiscard]] qint64 read(char *to, qint64 capacity, const QDeadlineTimer &deadline) override;
    bool write(const QVector<QByteArray> &pieces) override;
    [[nodiscard]] bool isWritable() const override { return !failed_ && !stopping_; }
    void limitSendBuffer(int bytes) override;
    void shutdownWriting() override;
    [[nodiscard]] QHostAddress peerAddress() const override;

private:
    explicit TlsStream(const std::atomic<bool> &stopping) : stopping_(stopping) {}

    /// Waits until no more than `maxBytes` are buffered for sending. Returns false if the connection has failed.
    [[nodiscard]] bool waitForUnsent(qint64 maxBytes);

    QSslSocket socket_;
    const std::atomic<bool> &stopping_;
};
