#pragma once

#include "core/eye_tracking_sample.h"

#include <chrono>
#include <optional>
#include <vector>

/// A sample with its number and arrival.
struct NumberedSample {
    /// Counts the samples of all trackers from 1 since the program started, so it is unique. 0 means no sample.
    quint64 number = 0;
    /// When the back-end delivered the sample. Never decreases from one sample of a tracker to the next.
    std::chrono::steady_clock::time_point arrival;
    EyeTrackingSample sample;
};

/// The samples of a tracker with a number above N.
struct SamplesSince {
    std::vector<NumberedSample> samples;  ///< still in the window, oldest first
    /// How many samples with a number above N have left the window. If not 0, the reader was too slow. Nothing if that
    /// number is not known any more. A gap in the numbers does not mean that samples were missed: another tracker may
    /// have delivered at the same time.
    std::optional<quint64> missedCount = 0;
    int windowCount = 0;  ///< all samples in the window, including those up to number N
};
