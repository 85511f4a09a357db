#include "http/listen_waiter.h"

#include <winsock2.h>

struct ListenWaiter::Handles {
    std::vector<SOCKET> listeners = {};
    std::vector<WSAEVENT> events = {};  ///< one for each listener, and one for wake()
};

ListenWaiter::ListenWaiter(const std::vector<tSocketDescriptor> &listeners) : handles_(std::make_unique<Handles>()) {
    for (const tSocketDescriptor listener : listeners)
        handles_->listeners.push_back(static_cast<SOCKET>(listener));
    for (std::size_t i = 0; i <= listeners.size(); ++i)
        handles_->events.push_back(::WSACreateEvent());
}

ListenWaiter::~ListenWaiter() {
    for (const WSAEVENT event : handles_->events)
        ::WSACloseEvent(event);
}

void ListenWaiter::wait(int timeoutMs) {
    // Selecting an event again sets it if a client waits already. Windows also sets it after the next accept(). Under
    // Wine, however, a listener that many clients use at the same time sometimes stops setting it.
    for (std::size_t i = 0; i < handles_->listeners.size(); ++i) {
        ::WSAResetEvent(handles_->events[i]);
        ::WSAEventSelect(handles_->listeners[i], handles_->events[i], FD_ACCEPT);
    }
    const auto count = static_cast<DWORD>(handles_->events.size());
    const DWORD timeout = timeoutMs < 0 ? WSA_INFINITE : static_cast<DWORD>(timeoutMs);
    ::WSAWaitForMultipleEvents(count, handles_->events.data(), FALSE, timeout, FALSE);
}

void ListenWaiter::wake() {
    ::WSASetEvent(handles_->events.back());
}
