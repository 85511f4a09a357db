#include "support/typical_samples.h"

#include <random>

namespace {

constexpr qint64 firstTimestampMs = 1700000000000;

class SampleGenerator {
public:
    EyeTrackingSample next() {
        EyeTrackingSample sample;
        sample.timestamp = firstTimestampMs + count_++;
        sample.valid = sample.l_valid = sample.r_valid = true;
        sample.x = percent();
        sample.y = percent();
        sample.l_x = percent();
        sample.l_y = percent();
        sample.r_x = percent();
        sample.r_y = percent();
        sample.l_pupil_x = 300 + static_cast<qint32>(percent());
        sample.l_pupil_y = 200 + static_cast<qint32>(percent());
        sample.r_pupil_x = 600 + static_cast<qint32>(percent());
        sample.r_pupil_y = 200 + static_cast<qint32>(percent());
        sample.l_pupil_mm = 2.0F + percent() / 50.0F;
        sample.r_pupil_mm = 2.0F + percent() / 50.0F;
        sample.focus = percent();
        sample.distance_cm = 55.0F + percent() / 10.0F;
        sample.calculatePixels(1920, 1080);
        return sample;
    }

private:
    /// Returns a random percentage. As a fraction it has five decimals, like the values that trackers send.
    float percent() { return static_cast<float>(random_() % 100000 + 1) / 100000.0F * 100.0F; }

    std::mt19937 random_{1};
    qint64 count_ = 0;
};

}  // namespace

std::vector<EyeTrackingSample> bench::typicalSamples(std::size_t count) {
    SampleGenerator generator;
    std::vector<EyeTrackingSample> samples;
    samples.reserve(count);
    while (samples.size() < count)
        samples.push_back(generator.next());
    return samples;
}
