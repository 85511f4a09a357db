#include "http/client.h"

#include <array>
#include <cerrno>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// Shared by all clients, because no client keeps the body.
std::array<char, 1 << 18> buffer;

}  // namespace

bench::Client::~Client() {
    if (socket_ >= 0)
        close(socket_);
}

void bench::Client::start() {
    requestTime_ = Clock::now();
    socket_ = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    connecting_ = true;
    epoll_event event{EPOLLOUT, {this}};
    epoll_ctl(load_.epoll, EPOLL_CTL_ADD, socket_, &event);
    // A failure is reported as an event.
    (void)connect(socket_, reinterpret_cast<const sockaddr *>(&load_.server), sizeof load_.server);
}

void bench::Client::restart() {
    close(socket_);
    start();
}

void bench::Client::onEvent() {
    if (!connecting_)
        return read();
    connecting_ = false;
    epoll_event event{EPOLLIN, {this}};
    epoll_ctl(load_.epoll, EPOLL_CTL_MOD, socket_, &event);
    sendRequest();
}

void bench::Client::sendRequest() {
    if (load_.keepAlive)
        requestTime_ = Clock::now();
    response_ = ResponseParser();
    state_ = ResponseParser::State::Incomplete;
    // A request this short always fits into the send buffer of an idle connection.
    if (send(socket_, load_.request.data(), load_.request.size(), MSG_NOSIGNAL) < 0)
        fail();
}

void bench::Client::read() {
    const ssize_t size = recv(socket_, buffer.data(), buffer.size(), 0);
    if (size > 0)
        return take({buffer.data(), static_cast<std::size_t>(size)});
    if (size < 0 && errno == EAGAIN)
        return;
    if (size < 0 || load_.keepAlive || state_ != ResponseParser::State::Complete)
        return fail();
    finish();
    restart();
}

void bench::Client::take(std::string_view bytes) {
    state_ = state_ == ResponseParser::State::Incomplete ? response_.feed(bytes) : ResponseParser::State::Broken;
    if (state_ == ResponseParser::State::Broken)
        return fail();
    if (state_ == ResponseParser::State::Complete && load_.keepAlive) {
        finish();
        sendRequest();
    }
}

void bench::Client::finish() {
    microseconds_.push_back(waitedMicroseconds());
}

void bench::Client::fail() {
    ++errors_;
    restart();
}

float bench::Client::waitedMicroseconds() const {
    return std::chrono::duration<float, std::micro>(Clock::now() - requestTime_).count();
}
