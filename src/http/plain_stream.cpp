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

std::unique_ptr<PlainStream> PlainStream::open(tSocketDescriptor descriptor, const std::atomic<bool> &stopping) {
    if (!system_calls::prepareSocket(descriptor)) {
        system_calls::closeSocket(descriptor);
        return nullptr;
    }
    return std::unique_ptr<PlainStream>(new PlainStream(descriptor, stopping));
}

PlainStream::~PlainStream() {
    system_calls::closeSocket(descriptor_);
}

qint64 PlainStream::read(char *to, qint64 capacity, const QDeadlineTimer &deadline) {
    while (!stopping_) {
        if (deadline.hasExpired())
            return TimedOut;
        const qint64 left = deadline.isForever() ? system_calls::maxWaitMs : deadline.remainingTime();
        if (left < system_calls::maxWaitMs && !system_calls::waitReadable(descriptor_, static_cast<int>(left)))
            return TimedOut;
        const qint64 count = system_calls::receive(descriptor_, to, capacity);
        if (count != system_calls::tryAgain)
            return count > 0 ? count : qint64(Closed);
    }
    return Closed;
}

bool PlainStream::write(const QVector<QByteArray> &pieces) {
    UnsentPieces unsent(pieces);
    while (!unsent.isEmpty() && !failed_) {
        const qint64 count = system_calls::send(descriptor_, unsent.data(), unsent.count());
        if (count > 0)
            unsent.removeFirst(static_cast<std::size_t>(count));
        const bool lost = count <= 0 && count != system_calls::tryAgain;
        failed_ = lost || (stopping_ && !unsent.isEmpty());
    }
    return !failed_;
}

void PlainStream::limitSendBuffer(int bytes) {
    system_calls::limitSendBuffer(descriptor_, bytes);
}

void PlainStream::shutdownWriting() {
    system_calls::shutdownWriting(descriptor_);
}

QHostAddress PlainStream::peerAddress() const {
    return system_calls::peerAddress(descriptor_);
}
