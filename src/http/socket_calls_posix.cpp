#include "http/socket_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

namespace socket_calls {
namespace {

/// The text of a window of 2000 samples has 35.
constexpr std::size_t maxPiecesACall = 64;

int number(tSocketDescriptor socket) {
    return static_cast<int>(socket);
}

template <typename Value>
bool setOption(tSocketDescriptor socket, int level, int option, const Value &value) {
    return ::setsockopt(number(socket), level, option, &value, sizeof value) == 0;
}

/// The result of a call, with the reasons to call again told apart.
qint64 checked(ssize_t result) {
    if (result >= 0)
        return result;
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? tryAgain : -1;
}

}  // namespace

bool prepare(tSocketDescriptor socket) {
    const int flags = ::fcntl(number(socket), F_GETFL);
    if (flags < 0 || ::fcntl(number(socket), F_SETFL, flags & ~O_NONBLOCK) != 0)
        return false;
    timeval limit{};
    limit.tv_usec = sliceMs * 1000L;
    const bool ready =
        setOption(socket, SOL_SOCKET, SO_RCVTIMEO, limit) && setOption(socket, SOL_SOCKET, SO_SNDTIMEO, limit);
    setOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    return ready;
}

qint64 receive(tSocketDescriptor socket, char *to, qint64 capacity) {
    return checked(::recv(number(socket), to, static_cast<std::size_t>(capacity), 0));
}

qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count) {
    std::array<iovec, maxPiecesACall> vectors;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    const std::size_t used = std::min(static_cast<std::size_t>(count), maxPiecesACall);
    std::transform(pieces, pieces + used, vectors.begin(), [](std::string_view piece) {
        return iovec{const_cast<char *>(piece.data()), piece.size()};
    });
    msghdr message{};
    message.msg_iov = vectors.data();
    message.msg_iovlen = used;
    return checked(::sendmsg(number(socket), &message, MSG_NOSIGNAL));
}

bool waitReadable(tSocketDescriptor socket, int limitMs) {
    pollfd request{number(socket), POLLIN, 0};
    return ::poll(&request, 1, limitMs) > 0;
}

void endSending(tSocketDescriptor socket) {
    ::shutdown(number(socket), SHUT_WR);
}

void close(tSocketDescriptor socket) {
    ::close(number(socket));
}

QHostAddress peerAddress(tSocketDescriptor socket) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    return ::getpeername(number(socket), generic, &size) == 0 ? QHostAddress(generic) : QHostAddress();
}

void lengthenBacklog(tSocketDescriptor listener) {
    ::listen(number(listener), SOMAXCONN);
}

}  // namespace socket_calls
