#include "http/system_calls.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <linux/tcp.h>
#include <malloc.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

namespace system_calls {
namespace {

/// The maximum number of pieces per call. A response with 2000 samples has up to 36.
constexpr std::size_t maxPieceCount = 64;

int number(tSocketDescriptor socket) {
    return static_cast<int>(socket);
}

template <typename Value>
bool setOption(tSocketDescriptor socket, int level, int option, const Value &value) {
    return ::setsockopt(number(socket), level, option, &value, sizeof value) == 0;
}

/// Returns `result`, or tryAgain or -1 if the call has failed.
qint64 checked(ssize_t result) {
    if (result >= 0)
        return result;
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? tryAgain : -1;
}

}  // namespace

// sendfile() raises SIGPIPE if the client has disconnected. The signal would end the process.
void prepareThread(const char *name) {
    ::prctl(PR_SET_NAME, name);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

qint64 accept(tSocketDescriptor listener) {
    const int client = ::accept4(number(listener), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    // A client that has disconnected already is no failure of the listener.
    return client < 0 && errno == ECONNABORTED ? tryAgain : checked(client);
}

qint64 receiveNow(tSocketDescriptor socket, char *to, qint64 capacity) {
    return checked(::recv(number(socket), to, static_cast<std::size_t>(capacity), MSG_DONTWAIT));
}

bool prepareSocket(tSocketDescriptor socket) {
    const int flags = ::fcntl(number(socket), F_GETFL);
    if (flags < 0 || ::fcntl(number(socket), F_SETFL, flags & ~O_NONBLOCK) != 0)
        return false;
    timeval timeout{};
    timeout.tv_usec = maxWaitMs * 1000L;
    const bool ready =
        setOption(socket, SOL_SOCKET, SO_RCVTIMEO, timeout) && setOption(socket, SOL_SOCKET, SO_SNDTIMEO, timeout);
    setOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    return ready;
}

qint64 receive(tSocketDescriptor socket, char *to, qint64 capacity) {
    return checked(::recv(number(socket), to, static_cast<std::size_t>(capacity), 0));
}

qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count, Following following) {
    std::array<iovec, maxPieceCount> vectors;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    const std::size_t used = std::min(static_cast<std::size_t>(count), maxPieceCount);
    std::transform(pieces, pieces + used, vectors.begin(), [](std::string_view piece) {
        return iovec{const_cast<char *>(piece.data()), piece.size()};
    });
    msghdr message{};
    message.msg_iov = vectors.data();
    message.msg_iovlen = used;
    return checked(::sendmsg(number(socket), &message, MSG_NOSIGNAL | (following == Following::more ? MSG_MORE : 0)));
}

qint64 sendFile(tSocketDescriptor socket, int file, qint64 offset, qint64 bytes) {
    off_t position = offset;
    const ssize_t count = ::sendfile(number(socket), file, &position, static_cast<std::size_t>(bytes));
    return count < 0 && (errno == EINVAL || errno == ENOSYS) ? unsupported : checked(count);
}

qint64 acknowledgedBytes(tSocketDescriptor socket) {
    tcp_info info{};
    socklen_t size = sizeof info;
    const bool isKnown = ::getsockopt(number(socket), IPPROTO_TCP, TCP_INFO, &info, &size) == 0 &&
                         size >= offsetof(tcp_info, tcpi_bytes_acked) + sizeof info.tcpi_bytes_acked;
    return isKnown ? static_cast<qint64>(info.tcpi_bytes_acked) : -1;
}

bool waitReadable(tSocketDescriptor socket, int timeoutMs) {
    pollfd request{number(socket), POLLIN, 0};
    const QDeadlineTimer deadline(timeoutMs);
    int result = ::poll(&request, 1, timeoutMs);
    while (result < 0 && errno == EINTR)
        result = ::poll(&request, 1, static_cast<int>(deadline.remainingTime()));
    return result > 0;
}

void limitSendBuffer(tSocketDescriptor socket, int bytes) {
    setOption(socket, SOL_SOCKET, SO_SNDBUF, bytes);
}

void shutdownWriting(tSocketDescriptor socket) {
    ::shutdown(number(socket), SHUT_WR);
}

void closeSocket(tSocketDescriptor socket) {
    ::close(number(socket));
}

QHostAddress peerAddress(tSocketDescriptor socket) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    return ::getpeername(number(socket), generic, &size) == 0 ? QHostAddress(generic) : QHostAddress();
}

void raiseBacklog(tSocketDescriptor listener) {
    ::listen(number(listener), SOMAXCONN);
}

// By default, glibc raises its thresholds after the first large block is freed, and then keeps the memory of a short
// burst of requests forever.
void configureAllocator() {
    constexpr int largeBlockBytes = 4 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, largeBlockBytes);
    mallopt(M_TRIM_THRESHOLD, 2 * largeBlockBytes);
}

void trimHeap() {
    malloc_trim(0);
}

}  // namespace system_calls
