#include "http/socket_calls.h"

#include <algorithm>
#include <array>
#include <winsock2.h>
#include <ws2tcpip.h>

namespace socket_calls {
namespace {

constexpr std::size_t maxPiecesACall = 16;

SOCKET handle(tSocketDescriptor socket) {
    return static_cast<SOCKET>(socket);
}

template <typename Value>
bool setOption(tSocketDescriptor socket, int level, int option, const Value &value) {
    return ::setsockopt(handle(socket), level, option, reinterpret_cast<const char *>(&value), sizeof value) == 0;
}

/// The code for a call that failed, with the reasons to call again told apart.
qint64 failure() {
    const int error = ::WSAGetLastError();
    return error == WSAETIMEDOUT || error == WSAEWOULDBLOCK || error == WSAEINTR ? tryAgain : -1;
}

}  // namespace

bool prepare(tSocketDescriptor socket, int limitMs) {
    // An accepted socket inherits the listener's notifications, and cannot block while it has any.
    if (::WSAEventSelect(handle(socket), nullptr, 0) != 0)
        return false;
    u_long nonBlocking = 0;
    if (::ioctlsocket(handle(socket), static_cast<long>(FIONBIO), &nonBlocking) != 0)
        return false;
    const auto limit = static_cast<DWORD>(limitMs);
    const bool ready =
        setOption(socket, SOL_SOCKET, SO_RCVTIMEO, limit) && setOption(socket, SOL_SOCKET, SO_SNDTIMEO, limit);
    setOption(socket, IPPROTO_TCP, TCP_NODELAY, BOOL(TRUE));
    return ready;
}

qint64 receive(tSocketDescriptor socket, char *to, qint64 capacity) {
    const int count = ::recv(handle(socket), to, static_cast<int>(capacity), 0);
    return count >= 0 ? count : failure();
}

qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count) {
    std::array<WSABUF, maxPiecesACall> buffers{};
    const std::size_t used = std::min(static_cast<std::size_t>(count), maxPiecesACall);
    std::transform(pieces, pieces + used, buffers.begin(), [](std::string_view piece) {
        return WSABUF{static_cast<ULONG>(piece.size()), const_cast<char *>(piece.data())};
    });
    DWORD sent = 0;
    const int result = ::WSASend(handle(socket), buffers.data(), static_cast<DWORD>(used), &sent, 0, nullptr, nullptr);
    return result == 0 ? static_cast<qint64>(sent) : failure();
}

bool waitReadable(tSocketDescriptor socket, int limitMs) {
    WSAPOLLFD request{handle(socket), POLLRDNORM, 0};
    return ::WSAPoll(&request, 1, limitMs) > 0;
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

void lengthenBacklog(tSocketDescriptor listener) {
    ::listen(handle(listener), SOMAXCONN);
}

}  // namespace socket_calls
