#include "asee/tracker.h"

#include "asee/coefficients.h"
#include "asee/gaze_record.h"
#include "asee/results.h"
#include "device/camera.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace sim::asee_pro {

namespace {

constexpr int nullRecordInterval = 10;
// A program that trusts a wrong OCELA_SIM_ASEE_TOLD_BYTES up to this size does not read beyond the buffer. A larger
// value is allowed, for tests of programs that must reject it.
constexpr std::size_t minBufferBytes = 8 << 20;

long long microseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

/// Creates a file in the folder, like the vendor's library when it unpacks its models.
void unpackInto(const std::filesystem::path &configFolder) {
    std::error_code error;
    std::filesystem::create_directory(configFolder / "armeabi", error);
    std::ofstream(configFolder / "armeabi" / "unpacked.mnn") << "simulated\n";
}

}  // namespace

class Tracker::GazeStream {
public:
    explicit GazeStream(Tracker &tracker)
        : tracker_(tracker), recorder_(tracker.person_.setup()), nullRecords_(tracker.options_.has("null-records")) {}

    bool operator()() {
        const auto [receiver, tracking] = current();
        const GazeRecorder::Record record = recorder_.record(tracker_.person_.now(), tracking);
        const bool null = nullRecords_ && ++count_ % nullRecordInterval == 0;
        if (receiver.callback != nullptr)
            receiver.callback(null ? nullptr : record.data(), receiver.context);
        return true;
    }

private:
    std::pair<Receiver<asee_sdk::GazeCallback>, bool> current() {
        const std::lock_guard lock(tracker_.mutex_);
        return {tracker_.gazeReceiver_, tracker_.tracking_};
    }

    Tracker &tracker_;
    GazeRecorder recorder_;
    bool nullRecords_;
    int count_ = 0;
};

class Tracker::ImageStream {
public:
    explicit ImageStream(Tracker &tracker)
        : tracker_(tracker),
          options_(tracker.options_),
          camera_(options_.image.width, options_.image.height, tracker.person_.setup()),
          pixels_(std::max(camera_.sizeBytes(), minBufferBytes)) {}

    bool operator()() {
        const auto receiver = current();
        if (receiver.callback == nullptr)
            return true;
        camera_.paint(tracker_.person_.now(), pixels_.data());
        const environment::Size size = options_.reportedImage.value_or(options_.image);
        receiver.callback(options_.has("null-image") ? nullptr : pixels_.data(),
                          options_.reportedSizeBytes.value_or(static_cast<int>(camera_.sizeBytes())), size.width,
                          size.height, microseconds(), receiver.context);
        return true;
    }

private:
    Receiver<asee_sdk::ImageCallback> current() {
        const std::lock_guard lock(tracker_.mutex_);
        return tracker_.imageReceiver_;
    }

    Tracker &tracker_;
    Options options_;
    Camera camera_;
    std::vector<unsigned char> pixels_;
};

Tracker &Tracker::instance() {
    static auto *const tracker = new Tracker;
    return *tracker;
}

int Tracker::_7i_device_connect() {
    const std::lock_guard lock(mutex_);
    options_ = Options::fromEnvironment();
    connected_ = options_.connectError == Ok;
    return options_.connectError;
}

int Tracker::_7i_set_image_callback(asee_sdk::ImageCallback callback, void *context) {
    const std::lock_guard lock(mutex_);
    imageReceiver_ = {callback, context};
    return Ok;
}

int Tracker::_7i_set_gaze_callback(asee_sdk::GazeCallback callback, void *context) {
    const std::lock_guard lock(mutex_);
    gazeReceiver_ = {callback, context};
    return Ok;
}

int Tracker::_7i_start(const char *configFolder) {
    const std::lock_guard lock(mutex_);
    std::error_code error;
    if (!connected_)
        return NotConnected;
    if (options_.startError != Ok)
        return options_.startError;
    if (configFolder == nullptr || !std::filesystem::is_directory(configFolder, error))
        return NoConfigFolder;
    unpackInto(configFolder);
    if (!streams_)
        streams_ = startStreams();
    return Ok;
}

Tracker::Streams Tracker::startStreams() {
    Streams streams;
    streams.gaze = std::make_unique<Ticker>(options_.rateHz, GazeStream(*this));
    if (options_.imageRateHz > 0)
        streams.images = std::make_unique<Ticker>(options_.imageRateHz, ImageStream(*this));
    return streams;
}

int Tracker::_7i_start_tracking(const void *coefficients) {
    const std::lock_guard lock(mutex_);
    if (!streams_)
        return NotStarted;
    if (options_.has("refuse-coefficients") || !Coefficients::areIn(coefficients))
        return BadCoefficients;
    tracking_ = true;
    return Ok;
}

// The threads are moved out under the lock and joined after it is released, because a callback may wait for the lock.
int Tracker::_7i_stop() {
    std::optional<Streams> streams;
    std::unique_ptr<Ticker> point;
    std::chrono::milliseconds late;
    {
        const std::lock_guard lock(mutex_);
        streams.swap(streams_);
        point = endCalibration();
        connected_ = tracking_ = false;
        late = std::chrono::milliseconds(options_.lateCallbacksMs);
    }
    if (streams && late.count() > 0)
        std::thread([late, streams = std::move(streams)] { std::this_thread::sleep_for(late); }).detach();
    return Ok;
}

}  // namespace sim::asee_pro
