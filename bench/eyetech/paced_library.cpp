// An EyeTech library that costs next to nothing: 60 frames a second of one device, each with one of a few images that
// lie ready. What is measured with it is the program's own.

#include "trackers/eyetech/quicklink2.h"

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
constexpr std::size_t imageBytes = 2048UL * 1080UL;
constexpr std::size_t imageCount = 4;  // more than caches hold
constexpr auto interval = std::chrono::microseconds(16667);

std::atomic<int> status{ql_device_stopped};
std::atomic<bool> withImages{true};
std::atomic<std::int64_t> frameDoneNs{0};

const unsigned char *image(std::int64_t number) {
    static const auto images = [] {
        std::array<std::vector<unsigned char>, imageCount> all;
        for (std::vector<unsigned char> &one : all)
            one.assign(imageBytes, 100);
        return all;
    }();
    return images[static_cast<std::size_t>(number) % imageCount].data();
}

template <typename Value>
void put(QLFrameRecord *record, int offset, Value value) {
    std::memcpy(record->bytes + offset, &value, sizeof value);
}

void putEye(QLFrameRecord *record, int block, float x) {
    put(record, block + frame_record::eyeFound, true);
    put(record, block + frame_record::eyePupilCentre, x);
    put(record, block + frame_record::eyePupilCentre + 4, 540.0F);
}

std::int64_t nowNs() {
    return std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
}

}  // namespace

extern "C" {

/// When the last frame was done, by the steady clock.
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
    status = ql_device_running;
    return 0;
}

int QLDevice_Stop(int) {
    status = ql_device_stopped;
    return 0;
}

int QLDevice_GetFrame(int, int, QLFrameRecord *record) {
    const std::int64_t number = Clock::now().time_since_epoch() / interval + 1;
    std::this_thread::sleep_until(Clock::time_point(number * interval));
    if (withImages) {
        put(record, frame_record::imagePixels, image(number));
        put(record, frame_record::imageWidth, width);
        put(record, frame_record::imageHeight, height);
    }
    putEye(record, frame_record::leftEye, 700);
    putEye(record, frame_record::rightEye, 1300);
    put(record, frame_record::gazeValid, true);
    put(record, frame_record::gaze, static_cast<float>(number % 100));
    put(record, frame_record::distance_cm, 55.0F);
    frameDoneNs = nowNs();
    return 0;
}

}  // extern "C"
