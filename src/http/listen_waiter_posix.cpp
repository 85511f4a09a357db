#include "http/listen_waiter.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

struct ListenWaiter::Handles {
    int event = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::vector<pollfd> sockets = {};
};

ListenWaiter::ListenWaiter(const std::vector<tSocketDescriptor> &listeners) : handles_(std::make_unique<Handles>()) {
    handles_->sockets.push_back({handles_->event, POLLIN, 0});
    for (const tSocketDescriptor listener : listeners)
        handles_->sockets.push_back({static_cast<int>(listener), POLLIN, 0});
}

ListenWaiter::~ListenWaiter() {
    ::close(handles_->event);
}

void ListenWaiter::wait(int timeoutMs) {
    // poll() ignores negative descriptors, so without the event, wake() would have no effect.
    constexpr int timeoutWithoutEventMs = 250;
    const bool needsTimeout = handles_->event < 0 && (timeoutMs < 0 || timeoutMs > timeoutWithoutEventMs);
    ::poll(handles_->sockets.data(), handles_->sockets.size(), needsTimeout ? timeoutWithoutEventMs : timeoutMs);
}

void ListenWaiter::wake() {
    (void)::eventfd_write(handles_->event, 1);
}
