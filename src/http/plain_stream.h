#pragma once

#include "http/byte_stream.h"
#include "http/socket_descriptor.h"

#include <atomic>
#include <memory>

/// A TCP connection on the operating system's own blocking socket.
///
/// Qt's socket is not used here because of what it adds to each request: it asks whether bytes are there before it
/// reads them, copies all of them once more in both directions, and cannot send header and body from where they lie.
class PlainStream : public ByteStream {
public:
    /// Takes over a connected socket; null if it is none. `closing` outlives the stream.
    [[nodiscard]] static std::unique_ptr<PlainStream> open(tSocketDescriptor descriptor,
                                                           const std::atomic<bool> &closing);
    ~PlainStream() override;
    PlainStream(const PlainStream &) = delete;
    PlainStream &operator=(const PlainStream &) = delete;

    [[nodiscard]] qint64 read(char *to, qint64 capacity, const QDeadlineTimer &deadline) override;
    bool write(const QVector<QByteArray> &pieces) override;
    void endWriting() override;
    [[nodiscard]] QHostAddress peerAddress() const override;

private:
    PlainStream(tSocketDescriptor descriptor, const std::atomic<bool> &closing)
        : descriptor_(descriptor), closing_(closing) {}

    const tSocketDescriptor descriptor_;
    const std::atomic<bool> &closing_;
};
