#include "trackers/eyetech/eyetech_frame_fetcher.h"

#include "core/guarded.h"
#include "trackers/eyetech/eyetech_library.h"

#include <array>

namespace {

constexpr int frameTimeoutMs = 10000;

/// The number of stops. Its lock is held while a device is stopped and while an image is copied, but not while the
/// library waits for a frame.
Guarded<int> &stopCount() {
    // Never destroyed: a call for a frame may block until the process ends.
    static auto &count = *new Guarded<int>;
    return count;
}

}  // namespace

QLFrameData eyetech::fetchFrame(int device) {
    const int stopCountBefore = stopCount().copy();
    // A library with a larger record writes into the second one.
    std::array<quicklink2::QLFrameRecord, 2> records{};
    quicklink2::QLDevice_GetFrame(device, frameTimeoutMs, records.data());
    QLFrameData frame;
    frame.record = records.front();
    stopCount().with([&](int count) {
        if (count == stopCountBefore)
            frame.copyImage();
        else
            frame.removeImage();
    });
    return frame;
}

void eyetech::stopDevice(int device) {
    stopCount().with([device](int &count) {
        ++count;
        quicklink2::QLDevice_Stop(device);
    });
}
