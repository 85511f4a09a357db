#pragma once

#include <QHostAddress>
#include <string_view>

/// A socket of the operating system. Registered as a meta type, so that queued calls can carry it.
using tSocketDescriptor = qint64;

/// Calls to the operating system that Qt does not offer, one source file per platform. The caller keeps ownership of
/// the sockets that it passes.
namespace system_calls {

/// The maximum time that receive() and send() block.
constexpr int maxWaitMs = 250;
/// Returned by receive() and send() after maxWaitMs, or if a signal has interrupted them.
constexpr qint64 tryAgain = -2;
/// Returned by sendFile() if the system or the file cannot do it.
constexpr qint64 unsupported = -3;

/// Names the calling thread for debuggers, and prepares it for the calls below. Called once in each thread that sends.
/// Only the first 15 characters of `name`, which is ASCII, are used.
void prepareThread(const char *name);

/// Returns the next client of a non-blocking listening socket, tryAgain if no client waits, or -1 on failure, with the
/// reason as the last error of the system. The new socket is non-blocking, too.
[[nodiscard]] qint64 accept(tSocketDescriptor listener);
/// Like receive(), but never waits.
[[nodiscard]] qint64 receiveNow(tSocketDescriptor socket, char *to, qint64 capacity);

/// Sets up a connected socket for the calls below and disables Nagle's algorithm. Returns false on failure.
[[nodiscard]] bool prepareSocket(tSocketDescriptor socket);
/// Returns the number of bytes received, 0 at the end of the stream, -1 if the connection has failed, or tryAgain.
[[nodiscard]] qint64 receive(tSocketDescriptor socket, char *to, qint64 capacity);
/// Whether more data follows at once. The system then fills its packets before it sends them.
enum class Following { unknown, more };
/// Sends the pieces in order. Returns the number of bytes sent, -1 if the connection has failed, or tryAgain.
[[nodiscard]] qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count,
                          Following following = Following::unknown);
/// Sends up to `bytes` bytes of an open file without copying them. Returns the number of bytes sent, 0 at the end of
/// the file, -1 if the connection or the file has failed, tryAgain, or `unsupported`.
[[nodiscard]] qint64 sendFile(tSocketDescriptor socket, int file, qint64 offset, qint64 bytes);
/// Returns how many bytes the client's system has received since the connection was opened, or -1 if the system does
/// not know. The number rises with each read of the client, also while the send buffer accepts no data: Windows accepts
/// large blocks as a whole, and a wait for a writable socket ends on Linux when a third of the buffer is free.
[[nodiscard]] qint64 acknowledgedBytes(tSocketDescriptor socket);
/// Waits until receive() would return at once. Returns false after `timeoutMs`.
[[nodiscard]] bool waitReadable(tSocketDescriptor socket, int timeoutMs);
/// Limits the buffer for data that is not sent yet.
void limitSendBuffer(tSocketDescriptor socket, int bytes);
void shutdownWriting(tSocketDescriptor socket);
void closeSocket(tSocketDescriptor socket);
[[nodiscard]] QHostAddress peerAddress(tSocketDescriptor socket);
/// Raises the backlog of pending connections from Qt's 50 to the system's maximum. Has no effect on Windows.
void raiseBacklog(tSocketDescriptor listener);

/// Makes the process return large freed blocks to the system at once. Must be called before the first connection.
void configureAllocator();
/// Returns free memory to the system. Takes milliseconds.
void trimHeap();

}  // namespace system_calls
