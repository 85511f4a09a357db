#pragma once

#include <QtGlobal>
#include <unistd.h>

/// Redirects a file descriptor of this process to another one for the lifetime of this object.
class Redirected {
public:
    Redirected(int descriptor, int target) : descriptor_(descriptor), kept_(dup(descriptor)) {
        dup2(target, descriptor);
    }
    ~Redirected() {
        dup2(kept_, descriptor_);
        ::close(kept_);
    }
    Q_DISABLE_COPY(Redirected)

private:
    int descriptor_;
    int kept_;
};
