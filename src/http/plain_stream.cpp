#include "http/plain_stream.h"

#include "http/byte_text.h"
#include "http/system_calls.h"

#include <QFile>
#include <QVarLengthArray>
#include <algorithm>

namespace {

/// The bytes that are still to be sent, as views of the pieces given to write().
class UnsentPieces {
public:
    explicit UnsentPieces(const QVector<QByteArray> &pieces) {
        for (const QByteArray &piece : pieces) {
            if (!piece.isEmpty())
                views_.append(byte_text::view(piece));
        }
    }

    [[nodiscard]] bool isEmpty() const { return views_.isEmpty(); }
    [[nodiscard]] const std::string_view *data() const { return views_.constData(); }
    [[nodiscard]] int count() const { return views_.size(); }

    void removeFirst(std::size_t byteCount) {
        int whole = 0;
        for (; whole < views_.size() && views_[whole].size() <= byteCount; ++whole)
            byteCount -= views_[whole].size();
        views_.remove(0, whole);
        if (!views_.isEmpty())
            views_[0].remove_prefix(byteCount);
    }

private:
    QVarLengthArray<std::string_view, 8> views_;
};

}  // namespace

std::unique_ptr<PlainStream> PlainStream::open(UniqueSocket socket, const std::atomic<bool> &stopping) {
    if (!system_calls::prepareSocket(socket.get()))
        return nullptr;
    return std::unique_ptr<PlainStream>(new PlainStream(std::move(socket), stopping));
}

qint64 PlainStream::read(char *to, qint64 capacity, const QDeadlineTimer &deadline) {
    while (!stopping_) {
        if (deadline.hasExpired())
            return TimedOut;
        const qint64 left = deadline.isForever() ? system_calls::maxWaitMs : deadline.remainingTime();
        if (left < system_calls::maxWaitMs && !system_calls::waitReadable(socket_.get(), static_cast<int>(left)))
            return TimedOut;
        const qint64 count = system_calls::receive(socket_.get(), to, capacity);
        if (count != system_calls::tryAgain)
            return count > 0 ? count : qint64(Closed);
    }
    return Closed;
}

bool PlainStream::write(const QVector<QByteArray> &pieces) {
    return send(pieces, system_calls::Following::unknown);
}

bool PlainStream::send(const QVector<QByteArray> &pieces, system_calls::Following following) {
    UnsentPieces unsent(pieces);
    while (!unsent.isEmpty() && !failed_) {
        const auto begin = TransferRate::Clock::now();
        const qint64 count = system_calls::send(socket_.get(), unsent.data(), unsent.count(), following);
        if (count > 0)
            unsent.removeFirst(static_cast<std::size_t>(count));
        endWait(begin, count, unsent.isEmpty());
    }
    return !failed_;
}

/// Decides from the result of a system call whether the connection has failed.
void PlainStream::endWait(TransferRate::Clock::time_point begin, qint64 result, bool finished) {
    addWait(begin, qMax<qint64>(0, result), socket_.get());
    const bool lost = result <= 0 && result != system_calls::tryAgain;
    failed_ = lost || (!finished && (stopping_ || readingRate_.isTooSlow()));
}

bool PlainStream::writeFile(const QByteArray &head, QFile &file, qint64 offset, qint64 sizeBytes) {
    if (!send({head}, sizeBytes > 0 ? system_calls::Following::more : system_calls::Following::unknown))
        return false;
    // Each call may wait 250 ms for each 64 KB.
    constexpr qint64 maxCallBytes = 262144;
    const int descriptor = file.handle();
    while (sizeBytes > 0 && !failed_) {
        const auto begin = TransferRate::Clock::now();
        const qint64 count =
            system_calls::sendFile(socket_.get(), descriptor, offset, std::min(sizeBytes, maxCallBytes));
        if (count == system_calls::unsupported)
            return ByteStream::writeFile({}, file, offset, sizeBytes);
        if (count > 0) {
            offset += count;
            sizeBytes -= count;
        }
        endWait(begin, count, sizeBytes == 0);
    }
    return !failed_;
}

void PlainStream::limitSendBuffer(int bytes) {
    system_calls::limitSendBuffer(socket_.get(), bytes);
}

void PlainStream::shutdownWriting() {
    system_calls::shutdownWriting(socket_.get());
}

QHostAddress PlainStream::peerAddress() const {
    return system_calls::peerAddress(socket_.get());
}
