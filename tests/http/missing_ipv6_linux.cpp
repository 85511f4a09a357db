#include "missing_ipv6.h"

#include <atomic>
#include <cerrno>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<missing_ipv6::Reason> simulated{missing_ipv6::Reason::None};

int failure(int error) {
    errno = error;
    return -1;
}

}  // namespace

// Qt calls these functions instead of those in the C library.

extern "C" int socket(int domain, int type, int protocol) noexcept {
    if (domain == AF_INET6 && simulated == missing_ipv6::Reason::Protocol)
        return failure(EAFNOSUPPORT);
    return static_cast<int>(syscall(SYS_socket, domain, type, protocol));
}

extern "C" int bind(int socket, const sockaddr *address, socklen_t size) noexcept {
    if (address->sa_family == AF_INET6 && simulated == missing_ipv6::Reason::Address)
        return failure(EADDRNOTAVAIL);
    return static_cast<int>(syscall(SYS_bind, socket, address, size));
}

bool missing_ipv6::simulate(Reason reason) {
    simulated = reason;
    return true;
}
