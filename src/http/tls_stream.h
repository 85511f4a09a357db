#pragma once

#include "http/byte_stream.h"
#include "http/socket_descriptor.h"

#include <QSslSocket>
#include <atomic>
#include <memory>

class QSslConfiguration;

/// An encrypted connection. The handshake happens within the first read().
class TlsStream : public ByteStream {
public:
    /// Takes over a connected socket; null if it is none. `closing` outlives the stream.
    [[nodiscard]] static std::unique_ptr<TlsStream> open(tSocketDescriptor descriptor,
                                                         const QSslConfiguration &configuration,
                                                         const std::atomic<bool> &closing);
    ~TlsStream() override;

    [[nodiscard]] qint64 read(char *to, qint64 capacity, const QDeadlineTimer &deadline) override;
    bool write(const QVector<QByteArray> &pieces) override;
    void endWriting() override;
    [[nodiscard]] QHostAddress peerAddress() const override;

private:
    explicit TlsStream(const std::atomic<bool> &closing) : closing_(closing) {}

    /// Waits until at most `limit` bytes are still to be handed to the system.
    [[nodiscard]] bool drainTo(qint64 limit);

    QSslSocket socket_;
    const std::atomic<bool> &closing_;
};
