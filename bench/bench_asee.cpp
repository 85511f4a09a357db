// Measures an aSee Pro tracker with a library that only stores the callbacks, which the benchmark calls: the time of a
// callback, the time until a sample reaches the GUI thread, and the CPU share of the camera view.

#include "support/bare_asee.h"
#include "support/bare_tracker.h"
#include "support/rounds.h"
#include "trackers/asee/asee_record_reader.h"
#include "trackers/asee/asee_tracker.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t callsPerRound = 2000;  // the number of samples in the window of 2 s at 1000 Hz
constexpr std::size_t slowCallsPerRound = 100;
constexpr QSize camera(1280, 1024);
constexpr int measurementSeconds = 10;

/// Returns a record with the gaze points at the centre of the screen.
std::array<unsigned char, asee_sdk::gaze_record::sizeBytes> typicalRecord() {
    std::array<unsigned char, asee_sdk::gaze_record::sizeBytes> record{};
    const std::array<float, 2> half{0.5F, 0.5F};
    for (const std::size_t offset :
         {asee_sdk::gaze_record::gaze, asee_sdk::gaze_record::leftGaze, asee_sdk::gaze_record::rightGaze})
        std::copy_n(reinterpret_cast<const unsigned char *>(half.data()), sizeof half, record.begin() + offset);
    return record;
}

void sendGaze() {
    static const auto record = typicalRecord();
    bench::bareAsee().gaze(record.data(), bench::bareAsee().gazeContext);
}

void sendImage() {
    static const std::vector<unsigned char> image(static_cast<std::size_t>(camera.width() * camera.height()), 0x77);
    bench::bareAsee().image(image.data(), static_cast<int>(image.size()), camera.width(), camera.height(), 0,
                            bench::bareAsee().imageContext);
}

/// Calls a function at a constant rate in a separate thread, until it is destroyed.
class Device {
public:
    template <typename Call>
    Device(int rate, Call call)
        : thread_([this, rate, call] {
              auto next = Clock::now();
              while (running_) {
                  next += std::chrono::nanoseconds(1000000000 / rate);
                  std::this_thread::sleep_until(next);
                  call();
              }
          }) {}
    ~Device() {
        running_ = false;
        thread_.join();
    }

private:
    std::atomic<bool> running_{true};
    std::thread thread_;
};

void runEventLoop(int length_s) {
    QTimer::singleShot(length_s * 1000, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

/// Returns the times from just before the library's callback until the GUI thread receives the sample, in microseconds,
/// sorted.
std::vector<double> latencies(aSeePro &tracker) {
    std::vector<Clock::time_point> sent(std::size_t{1000} * (measurementSeconds + 5));
    std::atomic<std::size_t> count{0};
    std::vector<double> delays;
    QObject receiver;
    QObject::connect(
        &tracker, &EyetrackerInterface::newSample, &receiver,
        [&] {
            delays.push_back(std::chrono::duration<double, std::micro>(Clock::now() - sent[delays.size()]).count());
        },
        Qt::QueuedConnection);
    const Device device(1000, [&] {
        if (count < sent.size())
            sent[count++] = Clock::now();
        sendGaze();
    });
    runEventLoop(measurementSeconds);
    std::sort(delays.begin(), delays.end());
    return delays;
}

void printLatencies(const char *title, aSeePro &tracker) {
    const std::vector<double> delays = latencies(tracker);
    const std::size_t count = delays.size();
    if (count == 0)
        qFatal("no sample was delivered");
    std::printf("%-58s %9zu %9.1f %9.1f %9.1f\n", title, count, delays[count / 2], delays[count * 99 / 100],
                delays.back());
}

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void printPreview(const char *title, aSeePro &tracker, QWidget &view) {
    int images = 0;
    QObject receiver;
    QObject::connect(
        &tracker, &aSeePro::previewImageReady, &receiver, [&] { ++images; }, Qt::QueuedConnection);
    const Device device(60, sendImage);
    const double before = processorSeconds();
    runEventLoop(measurementSeconds);
    const double share = 100 * (processorSeconds() - before) / measurementSeconds;
    std::printf("%-58s %9d x %-5d %9d %9.1f %%\n", title, view.width(), view.height(), images, share);
}

void compareCallbacks(aSeePro &tracker, int rounds) {
    BareTracker bare;
    const auto record = typicalRecord();
    const EyeTrackingSample sample = asee::sampleOf(asee::GazeRecord(record.data()), QSize(1920, 1080));
    const auto repeat = [](std::size_t count, auto call) {
        return [count, call] {
            for (std::size_t i = 0; i < count; ++i)
                call();
        };
    };
    bench::print(
        "Callbacks on the library's thread, without receivers",
        bench::interleave(
            {{"baseline: addSample", callsPerRound, repeat(callsPerRound, [&] { bare.addSample(sample); }), {}},
             {"gaze", callsPerRound, repeat(callsPerRound, sendGaze), {}},
             {"image, preview hidden", callsPerRound, repeat(callsPerRound, sendImage),
              [&] { tracker.setPreviewEnabled(false); }},
             {"image, preview shown", slowCallsPerRound, repeat(slowCallsPerRound, sendImage),
              [&] { tracker.setPreviewEnabled(true); }}},
            rounds));
}

void measureLatencies(aSeePro &tracker, QWidget &view) {
    std::printf("\n%-58s %9s %9s %9s %9s\n", "Callback to GUI thread at 1000 Hz", "samples", "median us", "p99",
                "slowest");
    printLatencies("without camera images", tracker);
    view.show();
    const Device device(60, sendImage);
    printLatencies("with 60 camera images per second", tracker);
}

void measurePreview(aSeePro &tracker, QWidget &view) {
    std::printf("\n%-58s %17s %9s %9s\n", "Camera view, 60 images of 1280 x 1024 per second", "size", "images",
                "of a core");
    printPreview("shown", tracker, view);
    view.resize(camera);
    printPreview("shown at the size of the image", tracker, view);
    view.hide();
    printPreview("hidden", tracker, view);
}

/// The file is empty, because the library does not read the coefficients.
bool writeCoefficients(const QTemporaryDir &folder) {
    QFile file(folder.filePath("coefficient.dat"));
    return file.open(QIODevice::WriteOnly);
}

}  // namespace

int main(int argc, char *argv[]) {
    QApplication application(argc, argv);
    const int rounds = bench::roundsFrom(argc, argv, 51);
    const QTemporaryDir folder;
    if (!writeCoefficients(folder))
        qFatal("no temporary file");
    aSeePro tracker(folder.path(), nullptr);
    if (!tracker.start())
        qFatal("the library was not loaded");

    compareCallbacks(tracker, rounds);
    tracker.setPreviewEnabled(false);
    const std::unique_ptr<QWidget> view(tracker.createViewWidget());
    view->resize(400, 320);
    measureLatencies(tracker, *view);
    measurePreview(tracker, *view);
    return 0;
}
