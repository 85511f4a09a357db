#pragma once

#include <QtGlobal>
#include <csignal>
#include <sys/resource.h>

/// Limits the size of files for the lifetime of this object. As on a full disk, a write that exceeds the limit first
/// succeeds partially and then fails. Linux only.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    Q_DISABLE_COPY(FileSizeLimit)

private:
    void (*handler_)(int);
    rlimit before_ = {};
};
