#pragma once

#include "http/answer.h"

#include <chrono>
#include <netinet/in.h>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

/// What all clients of a run do.
struct Load {
    sockaddr_in server;
    std::string request;
    bool keepAlive;
    int epoll;
};

/// One client that asks, waits for the answer and asks again, until the program ends. It never blocks: the loop over
/// `Load::epoll`, whose events carry the client's address, calls it. With a new connection for each request the answer
/// counts when the server has closed.
class Client {
public:
    /// `load` outlives the client.
    explicit Client(const Load &load) : load_(load) {}
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;
    ~Client();

    void start();
    void onEvent();

    [[nodiscard]] const std::vector<float> &microseconds() const { return microseconds_; }
    [[nodiscard]] int errors() const { return errors_; }
    /// How long the present request has waited already.
    [[nodiscard]] float waitedMicroseconds() const;

private:
    void startAgain();
    void ask();
    void read();
    void take(std::string_view bytes);
    void finish();
    void fail();

    const Load &load_;
    int socket_ = -1;
    bool connecting_ = false;
    Answer answer_;
    Answer::State state_ = Answer::State::Incomplete;
    Clock::time_point asked_;
    std::vector<float> microseconds_;
    int errors_ = 0;
};

}  // namespace bench
