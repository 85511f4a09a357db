#include "toolkit/console.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// The most that a pipe with room takes at once without waiting, wherever.
constexpr std::size_t mostBytes = _POSIX_PIPE_BUF;

/// What is printed at every tick for days must not fill the disk, say in the file that a desktop session keeps of the
/// output of its programs.
constexpr off_t fullFileBytes = 10 << 20;

/// A file is not opened anew: it would be written from its beginning.
bool canWait(int stream) {
    struct stat state {};
    return isatty(stream) != 0 || (fstat(stream, &state) == 0 && S_ISFIFO(state.st_mode));
}

/// A terminal that takes only a part of a text holds up its writer until it takes the rest. Opened anew it does not,
/// and others who have it open notice nothing. The same holds for pipes.
void neverWaitFor(int stream) {
    if (!canWait(stream))
        return;
    const auto path = "/proc/self/fd/" + std::to_string(stream);
    const int anew = open(path.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (anew == -1)
        return;
    dup2(anew, stream);
    close(anew);
}

bool takesMore(int stream) {
    pollfd state{stream, POLLOUT, 0};
    return poll(&state, 1, 0) == 1 && state.revents == POLLOUT;
}

/// A file takes whatever it is given, so it is not asked.
bool hasRoom(int stream) {
    struct stat state {};
    const bool isFile = fstat(stream, &state) == 0 && S_ISREG(state.st_mode);
    return isFile ? state.st_size < fullFileBytes : takesMore(stream);
}

/// Who reads from a terminal in the background is stopped by it. A terminal that controls another session stops nobody.
bool isInBackground() {
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    return foreground != -1 && foreground != getpgrp();
}

}  // namespace

void console::prepare() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest number that is free is the one that is missing. It stays open to the end.
        if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) == -1)
            return;
    }
    // What is printed may fill what the log goes to.
    neverWaitFor(STDOUT_FILENO);
    neverWaitFor(STDERR_FILENO);
    // A reader may go away at any time.
    std::signal(SIGPIPE, SIG_IGN);
}

void console::print(std::string_view text) {
    // Of two threads that find room the second might find it taken.
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    while (!text.empty() && hasRoom(STDOUT_FILENO)) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), std::min(text.size(), mostBytes));
        if (written <= 0)
            return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
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
