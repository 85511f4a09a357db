// Sends requests to an HTTP server on this machine with several clients at a time, and prints their results as one line
// of JSON. One thread runs all clients, so that the other cores are free for the server.
//
// usage: http_load PORT PATH CLIENTS SECONDS keep|new

#include "http/client.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/epoll.h>

using bench::Client;
using bench::Clock;
using bench::Load;

namespace {

constexpr int pollMs = 20;  ///< the maximum time between two checks for the end

using Clients = std::vector<std::unique_ptr<Client>>;

Load loadFrom(char **argv) {
    Load load{};
    load.server.sin_family = AF_INET;
    load.server.sin_port = htons(static_cast<std::uint16_t>(std::atoi(argv[1])));
    load.server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    load.keepAlive = std::strcmp(argv[5], "keep") == 0;
    load.request = std::string("GET ") + argv[2] + " HTTP/1.1\r\nHost: localhost\r\n";
    load.request += load.keepAlive ? "\r\n" : "Connection: close\r\n\r\n";
    load.epoll = epoll_create1(EPOLL_CLOEXEC);
    return load;
}

/// Runs the clients for `seconds`, and returns the elapsed seconds.
double run(const Load &load, const Clients &clients, double seconds) {
    const auto begin = Clock::now();
    const auto elapsed = [begin] { return std::chrono::duration<double>(Clock::now() - begin).count(); };
    for (const auto &client : clients)
        client->start();
    std::array<epoll_event, 64> events{};
    while (elapsed() < seconds) {
        const int count = epoll_wait(load.epoll, events.data(), events.size(), pollMs);
        for (int i = 0; i < count; ++i)
            static_cast<Client *>(events[static_cast<std::size_t>(i)].data.ptr)->onEvent();
    }
    return elapsed();
}

float quantile(const std::vector<float> &sorted, double part) {
    return sorted.empty() ? 0 : sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

void print(const Clients &clients, double seconds) {
    std::vector<float> times;
    std::vector<std::size_t> counts;
    float longest = 0;
    int errors = 0;
    for (const auto &client : clients) {
        times.insert(times.end(), client->microseconds().begin(), client->microseconds().end());
        counts.push_back(client->microseconds().size());
        longest = std::max(longest, client->waitedMicroseconds());  // includes pending requests
        errors += client->errors();
    }
    std::sort(times.begin(), times.end());
    const auto [minCount, maxCount] = std::minmax_element(counts.begin(), counts.end());
    const auto unserved = std::count(counts.begin(), counts.end(), 0U);
    std::printf(R"({"requests": %zu, "seconds": %.4f, "p50_us": %.1f, "p99_us": %.1f, "max_us": %.1f, )", times.size(),
                seconds, static_cast<double>(quantile(times, 0.5)), static_cast<double>(quantile(times, 0.99)),
                static_cast<double>(std::max(longest, quantile(times, 1))));
    std::printf(R"("served": %zu, "min_responses": %zu, "max_responses": %zu, "errors": %d})"
                "\n",
                clients.size() - static_cast<std::size_t>(unserved), *minCount, *maxCount, errors);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 6 || std::atoi(argv[3]) < 1) {
        std::fprintf(stderr, "usage: http_load PORT PATH CLIENTS SECONDS keep|new\n");
        return 2;
    }
    const Load load = loadFrom(argv);
    Clients clients;
    for (int i = 0; i < std::atoi(argv[3]); ++i)
        clients.push_back(std::make_unique<Client>(load));
    print(clients, run(load, clients, std::atof(argv[4])));
    return 0;
}
