#include "http/client.h"

#include <array>
#include <cerrno>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// One for all clients: none keeps the bytes of a body.
std::array<char, 1 << 18> buffer;

}  // namespace

bench::Client::~Client() {
    if (socket_ >= 0)
        close(socket_);
}

void bench::Client::start() {
    asked_ = Clock::now();
    socket_ = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    connecting_ = true;
    epoll_event event{EPOLLOUT, {this}};
    epoll_ctl(load_.epoll, EPOLL_CTL_ADD, socket_, &event);
    // A refusal shows as an event, as the end of a connection does.
    (void)connect(socket_, reinterpret_cast<const sockaddr *>(&load_.server), sizeof load_.server);
}

void bench::Client::startAgain() {
    close(socket_);
    start();
}

void bench::Client::onEvent() {
    if (!connecting_)
        return read();
    connecting_ = false;
    epoll_event event{EPOLLIN, {this}};
    epoll_ctl(load_.epoll, EPOLL_CTL_MOD, socket_, &event);
    ask();
}

void bench::Client::ask() {
    if (load_.keepAlive)
        asked_ = Clock::now();
    answer_ = Answer();
    state_ = Answer::State::Incomplete;
    // So short a request finds room whenever the connection stands.
    if (send(socket_, load_.request.data(), load_.request.size(), MSG_NOSIGNAL) < 0)
        fail();
}

void bench::Client::read() {
    const ssize_t size = recv(socket_, buffer.data(), buffer.size(), 0);
    if (size > 0)
        return take({buffer.data(), static_cast<std::size_t>(size)});
    if (size < 0 && errno == EAGAIN)
        return;
    if (size < 0 || load_.keepAlive || state_ != Answer::State::Complete)
        return fail();
    finish();
    startAgain();
}

void bench::Client::take(std::string_view bytes) {
    state_ = state_ == Answer::State::Incomplete ? answer_.feed(bytes) : Answer::State::Broken;
    if (state_ == Answer::State::Broken)
        return fail();
    if (state_ == Answer::State::Complete && load_.keepAlive) {
        finish();
        ask();
    }
}

void bench::Client::finish() {
    microseconds_.push_back(waitedMicroseconds());
}

void bench::Client::fail() {
    ++errors_;
    startAgain();
}

float bench::Client::waitedMicroseconds() const {
    return std::chrono::duration<float, std::micro>(Clock::now() - asked_).count();
}
