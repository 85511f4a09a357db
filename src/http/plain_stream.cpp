#include "http/plain_stream.h"

#include "http/socket_calls.h"

#include <QVarLengthArray>

namespace {

using Pieces = QVarLengthArray<std::string_view, 8>;

Pieces views(const QVector<QByteArray> &pieces) {
    Pieces result;
    for (const QByteArray &piece : pieces) {
        if (!piece.isEmpty())
            result.append(std::string_view(piece.constData(), static_cast<std::size_t>(piece.size())));
    }
    return result;
}

/// Leaves out the first `count` bytes.
void drop(Pieces &pieces, std::size_t count) {
    int whole = 0;
    for (; whole < pieces.size() && pieces[whole].size() <= count; ++whole)
        count -= pieces[whole].size();
    pieces.remove(0, whole);
    if (!pieces.isEmpty())
        pieces[0].remove_prefix(count);
}

}  // namespace

std::unique_ptr<PlainStream> PlainStream::open(tSocketDescriptor descriptor, const std::atomic<bool> &closing) {
    if (!socket_calls::prepare(descriptor)) {
        socket_calls::close(descriptor);
        return nullptr;
    }
    return std::unique_ptr<PlainStream>(new PlainStream(descriptor, closing));
}

PlainStream::~PlainStream() {
    socket_calls::close(descriptor_);
}

qint64 PlainStream::read(char *to, qint64 capacity, const QDeadlineTimer &deadline) {
    while (!closing_) {
        if (deadline.hasExpired())
            return TimedOut;
        const qint64 left = deadline.isForever() ? socket_calls::sliceMs : deadline.remainingTime();
        if (left < socket_calls::sliceMs && !socket_calls::waitReadable(descriptor_, static_cast<int>(left)))
            return TimedOut;
        const qint64 count = socket_calls::receive(descriptor_, to, capacity);
        if (count != socket_calls::tryAgain)
            return count > 0 ? count : qint64(Ended);
    }
    return Ended;
}

bool PlainStream::write(const QVector<QByteArray> &pieces) {
    Pieces unsent = views(pieces);
    while (!unsent.isEmpty() && !gone_) {
        const qint64 count = socket_calls::send(descriptor_, unsent.constData(), unsent.size());
        if (count > 0)
            drop(unsent, static_cast<std::size_t>(count));
        const bool lost = count <= 0 && count != socket_calls::tryAgain;
        gone_ = lost || (closing_ && !unsent.isEmpty());
    }
    return !gone_;
}

void PlainStream::endWriting() {
    socket_calls::endSending(descriptor_);
}

QHostAddress PlainStream::peerAddress() const {
    return socket_calls::peerAddress(descriptor_);
}
