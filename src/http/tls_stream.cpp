#include "http/tls_stream.h"

#include "http/socket_calls.h"

#include <QCoreApplication>
#include <QSslConfiguration>
#include <algorithm>

namespace {

/// Of what a client sends, this much is kept ahead of its being read.
constexpr qint64 readAheadBytes = 65536;
/// With more than this waiting to be sent, a further piece waits.
constexpr qint64 writeAheadBytes = 16384;
constexpr int goodbyeMs = 1000;

}  // namespace

std::unique_ptr<TlsStream> TlsStream::open(tSocketDescriptor descriptor, const QSslConfiguration &configuration,
                                           const std::atomic<bool> &closing) {
    std::unique_ptr<TlsStream> stream(new TlsStream(closing));
    if (!stream->socket_.setSocketDescriptor(descriptor))
        return nullptr;
    stream->socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    stream->socket_.setReadBufferSize(readAheadBytes);
    stream->socket_.setSslConfiguration(configuration);
    stream->socket_.startServerEncryption();
    return stream;
}

TlsStream::~TlsStream() {
    socket_.abort();
}

qint64 TlsStream::read(char *to, qint64 capacity, const QDeadlineTimer &deadline) {
    while (!closing_) {
        if (deadline.hasExpired())
            return TimedOut;
        // A handshake that fails closes the socket.
        if (!socket_.isOpen())
            return Ended;
        const qint64 count = socket_.read(to, capacity);
        // Without an event loop nobody else delivers the socket's request to itself to decrypt more.
        QCoreApplication::sendPostedEvents(&socket_, QEvent::MetaCall);
        if (count > 0)
            return count;
        if (count < 0 || socket_.state() != QAbstractSocket::ConnectedState)
            return Ended;
        const qint64 left = deadline.isForever() ? socket_calls::sliceMs : deadline.remainingTime();
        socket_.waitForReadyRead(static_cast<int>(std::min<qint64>(left, socket_calls::sliceMs)));
    }
    return Ended;
}

bool TlsStream::write(const QVector<QByteArray> &pieces) {
    for (const QByteArray &piece : pieces)
        gone_ = gone_ || !drainTo(writeAheadBytes) || socket_.write(piece) != piece.size();
    gone_ = gone_ || !drainTo(0);
    return !gone_;
}

bool TlsStream::drainTo(qint64 limit) {
    while (socket_.bytesToWrite() + socket_.encryptedBytesToWrite() > limit) {
        const bool written = socket_.waitForBytesWritten(socket_calls::sliceMs);
        if (closing_ || (!written && socket_.state() != QAbstractSocket::ConnectedState))
            return false;
    }
    return socket_.state() == QAbstractSocket::ConnectedState;
}

void TlsStream::endWriting() {
    socket_.disconnectFromHost();
    if (!closing_ && socket_.state() != QAbstractSocket::UnconnectedState)
        socket_.waitForDisconnected(goodbyeMs);
}

QHostAddress TlsStream::peerAddress() const {
    return socket_.peerAddress();
}
