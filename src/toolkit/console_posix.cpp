#include "toolkit/console.h"

#include <QByteArray>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// The most that a pipe with room takes at once without waiting.
constexpr int mostBytes = 512;
static_assert(mostBytes <= PIPE_BUF);

bool hasRoom(int stream) {
    pollfd state{stream, POLLOUT, 0};
    return poll(&state, 1, 0) == 1 && state.revents == POLLOUT;
}

}  // namespace

void console::prepare() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest number that is free is the one that is missing. It stays open to the end.
        if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) == -1)
            return;
    }
    // A reader may go away at any time.
    std::signal(SIGPIPE, SIG_IGN);
}

void console::print(const QByteArray &text) {
    for (int done = 0; done < text.size() && hasRoom(STDOUT_FILENO);) {
        const auto written = write(STDOUT_FILENO, text.constData() + done,
                                   static_cast<std::size_t>(std::min(text.size() - done, mostBytes)));
        if (written <= 0)
            return;
        done += static_cast<int>(written);
    }
}

int console::readCharacter() {
    unsigned char character = 0;
    ssize_t count = 0;
    do {
        count = read(STDIN_FILENO, &character, 1);
    } while (count == -1 && errno == EINTR);
    tcflush(STDIN_FILENO, TCIFLUSH);
    return count == 1 ? character : -1;
}
