#pragma once

#include "http/response_parser.h"

#include <chrono>
#include <netinet/in.h>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

/// The parameters of all clients of a run.
struct Load {
    sockaddr_in server;
    std::string request;
    bool keepAlive;
    int epoll;
};

/// A client that sends a request, waits for the response, and repeats. It never blocks: events of `Load::epoll` carry
/// a pointer to the client, and the event loop calls onEvent(). With a new connection for each request, a response is
/// complete when the server has closed the connection.
class Client {
public:
    /// `load` must outlive the client.
    explicit Client(const Load &load) : load_(load) {}
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;
    ~Client();

    void start();
    void onEvent();

    [[nodiscard]] const std::vector<float> &microseconds() const { return microseconds_; }
    [[nodiscard]] int errors() const { return errors_; }
    /// Returns the time since the current request, or the new connection for it, was started.
    [[nodiscard]] float waitedMicroseconds() const;

private:
    void restart();
    void sendRequest();
    void read();
    void take(std::string_view bytes);
    void finish();
    void fail();

    const Load &load_;
    int socket_ = -1;
    bool connecting_ = false;
    ResponseParser response_;
    ResponseParser::State state_ = ResponseParser::State::Incomplete;
    Clock::time_point requestTime_;
    std::vector<float> microseconds_;
    int errors_ = 0;
};

}  // namespace bench
