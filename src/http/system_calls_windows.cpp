// Windows 10, version 1703, declares SIO_TCP_INFO.
#define NTDDI_VERSION 0x0A000003

#include "http/system_calls.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <malloc.h>
#include <string>
#include <winsock2.h>
#include <ws2tcpip.h>
// After winsock2.h, which it needs.
#include <mstcpip.h>

namespace system_calls {
namespace {

constexpr std::size_t maxPieceCount = 64;

SOCKET handle(tSocketDescriptor socket) {
    return static_cast<SOCKET>(socket);
}

/// Returns whether `event` or an error has occurred within `timeoutMs`. The next call reports the error.
bool waitFor(tSocketDescriptor socket, SHORT event, int timeoutMs) {
    WSAPOLLFD request{handle(socket), event, 0};
    return ::WSAPoll(&request, 1, timeoutMs) != 0;
}

/// Returns `result`, or tryAgain or -1 if the call has failed.
qint64 checked(qint64 result) {
    if (result >= 0)
        return result;
    const int error = ::WSAGetLastError();
    return error == WSAEWOULDBLOCK || error == WSAEINTR ? tryAgain : -1;
}

/// Calls `call`. If it would block, waits up to maxWaitMs for `event` and calls it again. Sockets are non-blocking
/// here: after a timeout (SO_RCVTIMEO or SO_SNDTIMEO), Winsock leaves a blocking socket in an indeterminate state.
template <typename Call>
qint64 repeat(tSocketDescriptor socket, SHORT event, const Call &call) {
    // The error must be read before waitFor() overwrites it.
    const qint64 result = checked(call());
    return result == tryAgain && waitFor(socket, event, maxWaitMs) ? checked(call()) : result;
}

}  // namespace

// The system function exists since Windows 10, version 1607.
void prepareThread(const char *name) {
    using SetThreadDescription = HRESULT(WINAPI *)(HANDLE, PCWSTR);
    const auto function = ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription");
    if (function) {
        const std::wstring text(name, name + std::strlen(name));
        reinterpret_cast<SetThreadDescription>(reinterpret_cast<void *>(function))(::GetCurrentThread(), text.c_str());
    }
}

qint64 accept(tSocketDescriptor listener) {
    const SOCKET client = ::accept(handle(listener), nullptr, nullptr);
    if (client != INVALID_SOCKET)
        return static_cast<qint64>(client);
    const int error = ::WSAGetLastError();
    return error == WSAEWOULDBLOCK || error == WSAEINTR || error == WSAECONNRESET ? tryAgain : -1;
}

qint64 receiveNow(tSocketDescriptor socket, char *to, qint64 capacity) {
    return checked(::recv(handle(socket), to, static_cast<int>(capacity), 0));
}

bool prepareSocket(tSocketDescriptor socket) {
    // Removes the event notifications that an accepted socket inherits from the listener.
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

qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count, Following /*following*/) {
    std::array<WSABUF, maxPieceCount> buffers{};
    const std::size_t used = std::min(static_cast<std::size_t>(count), maxPieceCount);
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

// Not TransmitFile(): desktop versions of Windows process only two of its calls at a time, so two slow clients would
// delay all other downloads.
qint64 sendFile(tSocketDescriptor, int, qint64, qint64) {
    return unsupported;
}

// Windows knows it since version 1703 of Windows 10.
qint64 acknowledgedBytes(tSocketDescriptor socket) {
    DWORD version = 0;
    TCP_INFO_v0 info{};
    DWORD size = 0;
    const int result =
        ::WSAIoctl(handle(socket), SIO_TCP_INFO, &version, sizeof version, &info, sizeof info, &size, nullptr, nullptr);
    return result == 0 ? static_cast<qint64>(info.BytesOut) - static_cast<qint64>(info.BytesInFlight) : -1;
}

bool waitReadable(tSocketDescriptor socket, int timeoutMs) {
    return waitFor(socket, POLLRDNORM, timeoutMs);
}

void limitSendBuffer(tSocketDescriptor socket, int bytes) {
    const auto *value = reinterpret_cast<const char *>(&bytes);
    ::setsockopt(handle(socket), SOL_SOCKET, SO_SNDBUF, value, sizeof bytes);
}

void shutdownWriting(tSocketDescriptor socket) {
    ::shutdown(handle(socket), SD_SEND);
}

void closeSocket(tSocketDescriptor socket) {
    ::closesocket(handle(socket));
}

QHostAddress peerAddress(tSocketDescriptor socket) {
    sockaddr_storage address{};
    int size = sizeof address;
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    return ::getpeername(handle(socket), generic, &size) == 0 ? QHostAddress(generic) : QHostAddress();
}

// Winsock ignores a second listen().
void raiseBacklog(tSocketDescriptor) {}

// The Windows heap returns large blocks at once.
void configureAllocator() {}

void trimHeap() {
    _heapmin();
}

}  // namespace system_calls
