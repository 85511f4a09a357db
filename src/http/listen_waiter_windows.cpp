#include "http/listen_waiter.h"

#include <winsock2.h>

struct ListenWaiter::Handles {
    std::vector<WSAEVENT> events = {};  ///< the first one is for wake()
};

ListenWaiter::ListenWaiter(const std::vector<tSocketDescriptor> &listeners) : handles_(std::make_unique<Handles>()) {
    handles_->events.push_back(::WSACreateEvent());
    for (const tSocketDescriptor listener : listeners) {
        handles_->events.push_back(::WSACreateEvent());
        ::WSAEventSelect(static_cast<SOCKET>(listener), handles_->events.back(), FD_ACCEPT);
    }
}

ListenWaiter::~ListenWaiter() {
    for (const WSAEVENT event : handles_->events)
        ::WSACloseEvent(event);
}

void ListenWaiter::wait(int timeoutMs) {
    const auto count = static_cast<DWORD>(handles_->events.size());
    const DWORD timeout = timeoutMs < 0 ? WSA_INFINITE : static_cast<DWORD>(timeoutMs);
    ::WSAWaitForMultipleEvents(count, handles_->events.data(), FALSE, timeout, FALSE);
    // The event of a socket is set again after the next accept() if further clients wait.
    for (std::size_t i = 1; i < handles_->events.size(); ++i)
        ::WSAResetEvent(handles_->events[i]);
}

void ListenWaiter::wake() {
    ::WSASetEvent(handles_->events.front());
}
