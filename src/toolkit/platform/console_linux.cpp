#include "toolkit/platform/console.h"
#include "toolkit/platform/output_limit.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// On every POSIX system, a writable pipe accepts a write of this size without blocking.
constexpr std::size_t maxWriteBytes = _POSIX_PIPE_BUF;

/// Limits files because the program may print several lines a second for days. Desktop sessions, for example, redirect
/// the output of programs to a file.
constexpr off_t maxFileBytes = 10 << 20;

/// Returns the type of a stream as in stat::st_mode, or 0 if the stream is not open.
mode_t typeOf(int stream) {
    struct stat state {};
    return fstat(stream, &state) == 0 ? state.st_mode & S_IFMT : 0;
}

bool isTerminalOrPipe(int stream) {
    return isatty(stream) != 0 || typeOf(stream) == S_IFIFO;
}

bool isPipeOrSocket(int stream) {
    const mode_t type = typeOf(stream);
    return type == S_IFIFO || type == S_IFSOCK;
}

/// Writing to a terminal or a pipe may block. The stream is opened again for non-blocking output, because O_NONBLOCK on
/// the existing stream would also apply to other processes that share it. Files are not opened again: they do not
/// block, and their write position would return to the beginning.
void makeNonBlocking(int stream) {
    if (!isTerminalOrPipe(stream))
        return;
    const auto path = "/proc/self/fd/" + std::to_string(stream);
    const int reopened = open(path.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (reopened == -1)
        return;
    dup2(reopened, stream);
    close(reopened);
}

bool isWritable(int stream) {
    pollfd state{stream, POLLOUT, 0};
    return poll(&state, 1, 0) == 1 && state.revents == POLLOUT;
}

bool hasRoom(int stream) {
    struct stat state {};
    const bool isFile = fstat(stream, &state) == 0 && S_ISREG(state.st_mode);
    return isFile ? state.st_size < maxFileBytes : isWritable(stream);
}

/// A terminal stops a background process that reads from it.
bool isInBackground() {
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    return foreground != -1 && foreground != getpgrp();
}

}  // namespace

void console::prepare() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // open() returns the lowest free descriptor, which is the missing stream. It is never closed.
        if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) == -1)
            return;
    }
    // Both streams may share one pipe or terminal.
    makeNonBlocking(STDOUT_FILENO);
    makeNonBlocking(STDERR_FILENO);
    // Writing to a pipe whose reader has exited must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
}

void console::print(std::string_view text) {
    // Another thread must not fill the pipe between the check and the write.
    static std::mutex mutex;
    static OutputLimit limit;
    const std::lock_guard<std::mutex> lock(mutex);
    if (isPipeOrSocket(STDOUT_FILENO) && !limit.admits(text))
        return;
    while (!text.empty() && hasRoom(STDOUT_FILENO)) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), std::min(text.size(), maxWriteBytes));
        if (written <= 0)
            return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool console::canAnswer() {
    if (isatty(STDIN_FILENO) != 0)
        return !isInBackground();
    int unreadBytes = 0;
    return ioctl(STDIN_FILENO, FIONREAD, &unreadBytes) == 0 && unreadBytes > 0;
}

int console::readCharacter() {
    if (isInBackground())
        return -1;
    unsigned char character = 0;
    ssize_t count = 0;
    do {
        count = read(STDIN_FILENO, &character, 1);
    } while (count == -1 && errno == EINTR);
    tcflush(STDIN_FILENO, TCIFLUSH);
    return count == 1 ? character : -1;
}
