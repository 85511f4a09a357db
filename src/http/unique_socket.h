#pragma once

#include "http/system_calls.h"

#include <utility>

/// Owns a socket of the operating system, and closes it.
class UniqueSocket {
public:
    UniqueSocket() = default;
    explicit UniqueSocket(tSocketDescriptor descriptor) : descriptor_(descriptor) {}
    UniqueSocket(UniqueSocket &&other) noexcept : descriptor_(other.release()) {}
    UniqueSocket &operator=(UniqueSocket &&other) noexcept {
        close();
        descriptor_ = other.release();
        return *this;
    }
    ~UniqueSocket() { close(); }

    [[nodiscard]] bool isOpen() const { return descriptor_ != none; }
    [[nodiscard]] tSocketDescriptor get() const { return descriptor_; }
    /// Returns the descriptor. The caller must close it.
    [[nodiscard]] tSocketDescriptor release() { return std::exchange(descriptor_, none); }
    void close() {
        if (isOpen())
            system_calls::closeSocket(release());
    }

private:
    static constexpr tSocketDescriptor none = -1;

    tSocketDescriptor descriptor_ = none;
};
