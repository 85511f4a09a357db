// Measures the time from the return of the library's frame call to `newSample`, at 60 frames per second.

#include "trackers/eyetech/eyetech_tracker.h"

#include <QApplication>
#include <QLibrary>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

constexpr int warmUpFrameCount = 30;

std::int64_t nowNs() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The additional entry points of the library of this benchmark.
struct PacedLibrary {
    QLibrary library{QStringLiteral("QuickLink2")};
    std::int64_t (*frameDoneNs)() = nullptr;
    void (*setImages)(bool) = nullptr;

    PacedLibrary() {
        frameDoneNs = reinterpret_cast<std::int64_t (*)()>(library.resolve("benchFrameDoneNs"));
        setImages = reinterpret_cast<void (*)(bool)>(library.resolve("benchSetImages"));
        if (!frameDoneNs || !setImages)
            qFatal("%s", qUtf8Printable(library.errorString()));
    }
};

void print(const char *name, std::vector<std::int64_t> times) {
    times.erase(times.begin(), times.begin() + warmUpFrameCount);
    std::sort(times.begin(), times.end());
    const auto us = [&](std::size_t percent) {
        return static_cast<double>(times[(times.size() - 1) * percent / 100]) / 1000;
    };
    std::printf("  %-44s median %6.1f us   99 %% below %7.1f us   longest %7.1f us   (%zu frames)\n", name, us(50),
                us(99), us(100), times.size());
}

/// Returns the delays of calls that are queued from another thread at the rate of the frames.
std::vector<std::int64_t> queuedCalls(std::size_t count) {
    std::vector<std::int64_t> times;
    std::thread sender([&] {
        for (std::size_t i = 0; i < count; ++i) {
            std::this_thread::sleep_for(std::chrono::microseconds(16667));
            QMetaObject::invokeMethod(qApp, [&, sentNs = nowNs()] { times.push_back(nowNs() - sentNs); });
        }
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit);
    });
    QCoreApplication::exec();
    sender.join();
    return times;
}

std::vector<std::int64_t> frames(const PacedLibrary &library, std::size_t count) {
    const QTemporaryDir folder;
    std::vector<std::int64_t> times;
    EyetechGrabber tracker(folder.path(), nullptr);
    QObject::connect(&tracker, &EyetrackerInterface::newSample, &tracker, [&] {
        times.push_back(nowNs() - library.frameDoneNs());
        if (times.size() == count)
            QCoreApplication::quit();
    });
    (void)tracker.start();
    QCoreApplication::exec();
    return times;
}

}  // namespace

int main(int argc, char *argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const std::size_t count = warmUpFrameCount + (argc > 1 ? static_cast<std::size_t>(std::atoi(argv[1])) : 600);
    const PacedLibrary library;
    std::printf("EyeTech: from the return of the frame call to newSample, 60 frames per second\n");
    print("baseline: a queued call between two threads", queuedCalls(count));
    library.setImages(false);
    print("frames without an image", frames(library, count));
    library.setImages(true);
    print("frames of 2048 x 1080", frames(library, count));
    return 0;
}
