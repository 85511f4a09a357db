#pragma once

#include "http/unique_socket.h"

#include <array>
#include <chrono>

/// Clients that have received "503 too many connections". They are drained for up to a second: closing a socket with
/// unread data resets the connection, and the client could lose the response. Allocates no memory.
class RefusedClients {
public:
    /// Sends the response. Closes the connection at once if too many clients are being drained.
    void add(UniqueSocket client);
    /// Reads and discards what the clients have sent. Closes connections that have ended or were drained long enough.
    void drain();
    [[nodiscard]] bool isEmpty() const { return count_ == 0; }

private:
    using Clock = std::chrono::steady_clock;

    struct Client {
        UniqueSocket socket = {};
        Clock::time_point end = {};
    };

    static constexpr int maxCount = 50;

    std::array<Client, maxCount> clients_;
    int count_ = 0;
};
