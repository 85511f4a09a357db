#pragma once

#include "http/socket_descriptor.h"

#include <QHostAddress>
#include <string_view>

/// The calls to the operating system's sockets that Qt does not offer, one file a platform. All leave the descriptor
/// with the caller.
namespace socket_calls {

/// The longest that receive() and send() wait.
constexpr int sliceMs = 250;
/// What they return when that has passed or a signal came in between.
constexpr qint64 tryAgain = -2;

/// To be called once before the others; lets small answers leave at once. False if the descriptor is no socket.
[[nodiscard]] bool prepare(tSocketDescriptor socket);
/// The number of bytes; 0 at the end of what the client sends, -1 when the connection is lost.
[[nodiscard]] qint64 receive(tSocketDescriptor socket, char *to, qint64 capacity);
/// Sends the pieces as one block; the number of bytes that the system has taken, -1 when the connection is lost.
[[nodiscard]] qint64 send(tSocketDescriptor socket, const std::string_view *pieces, int count);
/// Whether receive() would return at once, within `limitMs`.
[[nodiscard]] bool waitReadable(tSocketDescriptor socket, int limitMs);
void endSending(tSocketDescriptor socket);
void close(tSocketDescriptor socket);
[[nodiscard]] QHostAddress peerAddress(tSocketDescriptor socket);
/// Lets more clients wait for being accepted than Qt's 50, but on Windows: beyond the limit they wait for a second, or
/// are refused.
void lengthenBacklog(tSocketDescriptor listener);

}  // namespace socket_calls
