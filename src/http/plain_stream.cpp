#include "http/plain_stream.h"

#include "http/byte_text.h"
#include "http/system_calls.h"

#include <QVarLengthArray>

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
    UnsentPieces unsent(pieces);
    while (!unsent.isEmpty() && !failed_) {
        const auto begin = TransferRate::Clock::now();
        const qint64 count = system_calls::send(socket_.get(), unsent.data(), unsent.count());
        if (count > 0)
            unsent.removeFirst(static_cast<std::size_t>(count));
        readingRate_.addWait(begin, qMax<qint64>(0, count));
        const bool lost = count <= 0 && count != system_calls::tryAgain;
        failed_ = lost || (!unsent.isEmpty() && (stopping_ || readingRate_.isTooSlow()));
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
