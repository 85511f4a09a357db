#include "http/socket_calls.h"

#include <algorithm>
#include <array>
#include <winsock2.h>
#include <ws2tcpip.h>

namespace socket_calls {
namespace {

constexpr std::size_t maxPiecesACall = 64;

SOCKET handle(tSocketDescriptor socket) {
    return static_cast<SOCKET>(socket);
}

/// Whether `event` came within the time; also after an error, which the next call tells.
bool waitFor(tSocketDescriptor socket, SHORT event, int limitMs) {
    WSAPOLLFD request{handle(socket), event, 0};
    return ::WSAPoll(&request, 1, limitMs) != 0;
}

/// The result of a call, with the reasons to call again told apart.
qint64 checked(qint64 result) {
    if (result >= 0)
        return result;
    const int error = ::WSAGetLastError();
    return error == WSAEWOULDBLOCK || error == WSAEINTR ? tryAgain : -1;
}

/// Calls, and once more if that was refused until an `event` comes. Winsock's own time limits would leave the socket in
/// an undefined state, so it does not block, and the waiting is done here.
template <typename Call>
qint64 repeat(tSocketDescriptor socket, SHORT event, const Call &call) {
    // Asked for its error before the waiting, which has an error of its own.
    const qint64 result = checked(call());
    return result == tryAgain && waitFor(socket, event, sliceMs) ? checked(call()) : result;
}

}  // namespace

bool prepare(tSocketDescriptor socket) {
    // An accepted socket inherits the listener's notifications, which it does not need.
    if (::WSAEventSelect(handle(socket), nullptr, 0) != 0)
        return false;
    u_long nonBlocking = 1;
    const bool ready = ::ioctlsocket(handle(socket), static_cast<long>(FIONBIO), &nonBlocking) == 0;
    const BOOL noDelay = TRUE;
    ::setsockopt(handle(socket), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char *>(&noDelay), sizeof noDelay);
    return ready;
}

qint64 receive(tSocketDescriptor socket, char *to, qint64 capacity) {
    return repeat(socket, POLLRDNORM,
                  [&]() -> qint64 { return ::recv(handle(socket), to, static_cast<int>(capacity), 0); });
}

qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count) {
    std::array<WSABUF, maxPiecesACall> buffers{};
    const std::size_t used = std::min(static_cast<std::size_t>(count), maxPiecesACall);
    std::transform(pieces, pieces + used, buffers.begin(), [](std::string_view piece) {
        return WSABUF{static_cast<ULONG>(piece.size()), const_cast<char *>(piece.data())};
    });
    return repeat(socket, POLLWRNORM, [&]() -> qint64 {
        DWORD sent = 0;
        const auto number = static_cast<DWORD>(used);
        const int result = ::WSASend(handle(socket), buffers.data(), number, &sent, 0, nullptr, nullptr);
        return result == 0 ? static_cast<qint64>(sent) : -1;
    });
}

bool waitReadable(tSocketDescriptor socket, int limitMs) {
    return waitFor(socket, POLLRDNORM, limitMs);
}

void endSending(tSocketDescriptor socket) {
    ::shutdown(handle(socket), SD_SEND);
}

void close(tSocketDescriptor socket) {
    ::closesocket(handle(socket));
}

QHostAddress peerAddress(tSocketDescriptor socket) {
    sockaddr_storage address{};
    int size = sizeof address;
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    return ::getpeername(handle(socket), generic, &size) == 0 ? QHostAddress(generic) : QHostAddress();
}

// Winsock keeps the number that a listening socket was given first.
void lengthenBacklog(tSocketDescriptor) {}

}  // namespace socket_calls
