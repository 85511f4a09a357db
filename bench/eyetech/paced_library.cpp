// An EyeTech library that needs almost no CPU time, so that the benchmarks measure Ocela. It has one device with 60
// frames per second. Each frame has one of a few prepared images.

#include "trackers/eyetech/sdk/quicklink2.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t width = 2048;
constexpr std::int32_t height = 1080;
constexpr auto imageBytes = std::size_t{width} * std::size_t{height};
constexpr std::size_t imageCount = 4;  // more than one, so that an image is not still in the cache
constexpr auto interval = std::chrono::microseconds(16667);

std::atomic<int> status{quicklink2::deviceStopped};
std::atomic<bool> withImages{true};
std::atomic<std::int64_t> frameDoneNs{0};

const unsigned char *image(std::int64_t number) {
    static const auto images = [] {
        std::array<std::vector<unsigned char>, imageCount> all;
        for (std::vector<unsigned char> &pixels : all)
            pixels.assign(imageBytes, 100);
        return all;
    }();
    return images[static_cast<std::size_t>(number) % imageCount].data();
}

template <typename Value>
void put(quicklink2::QLFrameRecord *record, int offset, Value value) {
    std::memcpy(record->bytes + offset, &value, sizeof value);
}

void putEye(quicklink2::QLFrameRecord *record, int block, float x) {
    put(record, block + quicklink2::frame_record::eyeFound, true);
    put(record, block + quicklink2::frame_record::eyePupilCentre, x);
    put(record, block + quicklink2::frame_record::eyePupilCentre + 4, 540.0F);
}

std::int64_t nowNs() {
    return std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
}

}  // namespace

extern "C" {

/// Returns the time of the steady clock when the last frame was complete.
std::int64_t benchFrameDoneNs() {
    return frameDoneNs;
}

void benchSetImages(bool on) {
    withImages = on;
}

int QLDevice_Enumerate(int *count, int *devices) {
    *count = 1;
    *devices = 1;
    return 0;
}

int QLDevice_GetStatus(int, int *value) {
    *value = status;
    return 0;
}

int QLDevice_Start(int) {
    status = quicklink2::deviceRunning;
    return 0;
}

int QLDevice_Stop(int) {
    status = quicklink2::deviceStopped;
    return 0;
}

int QLDevice_GetFrame(int, int, quicklink2::QLFrameRecord *record) {
    const std::int64_t number = Clock::now().time_since_epoch() / interval + 1;
    std::this_thread::sleep_until(Clock::time_point(number * interval));
    if (withImages) {
        put(record, quicklink2::frame_record::imagePixels, image(number));
        put(record, quicklink2::frame_record::imageWidth, width);
        put(record, quicklink2::frame_record::imageHeight, height);
    }
    putEye(record, quicklink2::frame_record::leftEye, 700);
    putEye(record, quicklink2::frame_record::rightEye, 1300);
    put(record, quicklink2::frame_record::gazeValid, true);
    put(record, quicklink2::frame_record::gaze, static_cast<float>(number % 100));
    put(record, quicklink2::frame_record::distance_cm, 55.0F);
    frameDoneNs = nowNs();
    return 0;
}

}  // extern "C"
