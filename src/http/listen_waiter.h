#pragma once

#include "http/system_calls.h"

#include <memory>
#include <vector>

/// Waits until a client connects to one of several listening sockets. Used in one thread, except for wake().
class ListenWaiter {
public:
    /// The sockets must stay open until this object is destroyed.
    explicit ListenWaiter(const std::vector<tSocketDescriptor> &listeners);
    ~ListenWaiter();
    ListenWaiter(const ListenWaiter &) = delete;
    ListenWaiter &operator=(const ListenWaiter &) = delete;

    /// Returns after a client has connected, after wake(), or after `timeoutMs` (-1: no timeout). May return earlier.
    void wait(int timeoutMs);
    /// Makes the current and all later calls of wait() return at once. Thread-safe.
    void wake();

private:
    struct Handles;
    const std::unique_ptr<Handles> handles_;
};
