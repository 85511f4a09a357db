#include "http/tls_stream.h"

#include "http/system_calls.h"

#include <QCoreApplication>
#include <QSslConfiguration>
#include <algorithm>

namespace {

/// The size of the socket's read buffer.
constexpr qint64 readBufferBytes = 65536;
/// The next piece is written only when at most this many bytes are buffered for sending.
constexpr qint64 maxUnsentBytes = 16384;
/// How long shutdownWriting() waits until everything is sent.
constexpr int flushTimeoutMs = 1000;

}  // namespace

std::unique_ptr<TlsStream> TlsStream::open(UniqueSocket socket, const QSslConfiguration &configuration,
                                           const std::atomic<bool> &stopping) {
    std::unique_ptr<TlsStream> stream(new TlsStream(stopping));
    // On success, the QSslSocket owns the descriptor.
    if (!stream->socket_.setSocketDescriptor(socket.get()))
        return nullptr;
    (void)socket.release();
    stream->socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    stream->socket_.setReadBufferSize(readBufferBytes);
    stream->socket_.setSslConfiguration(configuration);
    stream->socket_.startServerEncryption();
    return stream;
}

TlsStream::~TlsStream() {
    socket_.abort();
}

qint64 TlsStream::read(char *to, qint64 capacity, const QDeadlineTimer &deadline) {
    while (!stopping_) {
        if (deadline.hasExpired())
            return TimedOut;
        // A failed handshake closes the socket.
        if (!socket_.isOpen())
            return Closed;
        const qint64 count = socket_.read(to, capacity);
        // QSslSocket decrypts further data in a queued call to itself, and this thread has no event loop.
        QCoreApplication::sendPostedEvents(&socket_, QEvent::MetaCall);
        if (count > 0)
            return count;
        if (count < 0 || socket_.state() != QAbstractSocket::ConnectedState)
            return Closed;
        const qint64 left = deadline.isForever() ? system_calls::maxWaitMs : deadline.remainingTime();
        socket_.waitForReadyRead(static_cast<int>(std::min<qint64>(left, system_calls::maxWaitMs)));
    }
    return Closed;
}

bool TlsStream::write(const QVector<QByteArray> &pieces) {
    for (const QByteArray &piece : pieces)
        failed_ = failed_ || !waitForUnsent(maxUnsentBytes) || socket_.write(piece) != piece.size();
    failed_ = failed_ || !waitForUnsent(0);
    return !failed_;
}

bool TlsStream::waitForUnsent(qint64 maxBytes) {
    while (socket_.bytesToWrite() + socket_.encryptedBytesToWrite() > maxBytes) {
        const auto begin = TransferRate::Clock::now();
        const qint64 unsent = socket_.encryptedBytesToWrite();
        const bool written = socket_.waitForBytesWritten(system_calls::maxWaitMs);
        addWait(begin, qMax<qint64>(0, unsent - socket_.encryptedBytesToWrite()), socket_.socketDescriptor());
        if (stopping_ || readingRate_.isTooSlow() || (!written && socket_.state() != QAbstractSocket::ConnectedState))
            return false;
    }
    return socket_.state() == QAbstractSocket::ConnectedState;
}

void TlsStream::limitSendBuffer(int bytes) {
    socket_.setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, bytes);
}

void TlsStream::shutdownWriting() {
    socket_.disconnectFromHost();
    if (!stopping_ && socket_.state() != QAbstractSocket::UnconnectedState)
        socket_.waitForDisconnected(flushTimeoutMs);
}

QHostAddress TlsStream::peerAddress() const {
    return socket_.peerAddress();
}
