#include "api/hanging_files.h"

#include <QCoreApplication>
#include <QThread>
#include <condition_variable>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::mutex mutex;  ///< guards the next two
QByteArray hangingPart;
int blockedCount = 0;
std::condition_variable released;

void blockAt(const QByteArray &path) {
    std::unique_lock<std::mutex> lock(mutex);
    if (hangingPart.isEmpty() || !path.contains(hangingPart) || QThread::currentThread() == qApp->thread())
        return;
    ++blockedCount;
    released.wait(lock, [] { return hangingPart.isEmpty(); });
}

}  // namespace

// Qt calls this function instead of the one in the C library.
extern "C" int statx(int folder, const char *path, int flags, unsigned mask, struct statx *result) noexcept {
    blockAt(path);
    return static_cast<int>(syscall(SYS_statx, folder, path, flags, mask, result));
}

bool hanging_files::isSupported() {
    return true;
}

hanging_files::Hang::Hang(const QByteArray &part) {
    const std::lock_guard<std::mutex> lock(mutex);
    hangingPart = part;
    blockedCount = 0;
}

hanging_files::Hang::~Hang() {
    const std::lock_guard<std::mutex> lock(mutex);
    hangingPart.clear();
    released.notify_all();
}

int hanging_files::Hang::blockedThreadCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return blockedCount;
}
