#pragma once

#include <unistd.h>

/// While it lives, a file descriptor of this process stands for another one.
class Redirected {
public:
    Redirected(int descriptor, int target) : descriptor_(descriptor), kept_(dup(descriptor)) {
        dup2(target, descriptor);
    }
    ~Redirected() {
        dup2(kept_, descriptor_);
        ::close(kept_);
    }
    Redirected(const Redirected &) = delete;
    Redirected &operator=(const Redirected &) = delete;

private:
    int descriptor_;
    int kept_;
};
