#pragma once

#include <chrono>
#include <cstddef>

/// The length of a recording.
struct RecordLength {
    std::size_t sampleCount = 0;
    std::chrono::milliseconds duration{0};  ///< from the arrival of the first sample to the arrival of the last one
};
