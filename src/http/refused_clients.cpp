#include "http/refused_clients.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view tooManyConnections =
    "HTTP/1.1 503 too many connections\r\nConnection: close\r\n\r\nToo many connections\r\n";
constexpr std::chrono::seconds lingerTime{1};

/// Returns whether the client may still send data.
bool discardData(tSocketDescriptor client) {
    std::array<char, 16384> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the call
    // Limits the time for a client that sends faster than the data is discarded.
    constexpr int maxBlockCount = 16;
    for (int i = 0; i < maxBlockCount; ++i) {
        const qint64 count = system_calls::receiveNow(client, buffer.data(), static_cast<qint64>(buffer.size()));
        if (count <= 0)
            return count == system_calls::tryAgain;
    }
    return true;
}

}  // namespace

void RefusedClients::add(UniqueSocket client) {
    // The buffer of a new connection has room for the response, so the call never waits.
    (void)system_calls::send(client.get(), &tooManyConnections, 1);
    system_calls::shutdownWriting(client.get());
    const auto free =
        std::find_if(clients_.begin(), clients_.end(), [](const Client &entry) { return !entry.socket.isOpen(); });
    if (free == clients_.end())
        return;
    *free = {std::move(client), Clock::now() + lingerTime};
    ++count_;
}

void RefusedClients::drain() {
    if (isEmpty())
        return;
    const Clock::time_point now = Clock::now();
    for (Client &client : clients_) {
        if (client.socket.isOpen() && (!discardData(client.socket.get()) || now >= client.end)) {
            client.socket.close();
            --count_;
        }
    }
}
