#pragma once

#include "streams/lsl_library.h"

#include <chrono>

namespace lsl {

/// Converts times of the steady clock to times of lsl_local_clock(). Used only on the thread of LslWorker.
///
/// The two clocks may have different origins and, on some systems, drift apart. So their offset is measured at the
/// start and again after a minute or more.
class Clock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::minutes checkInterval{1};

    /// Measures the offset. `functions` must outlive the object.
    explicit Clock(const Functions &functions);

    /// Measures the offset again if the last measurement is older than `checkInterval`.
    void check(TimePoint now = std::chrono::steady_clock::now());

    /// Returns the time of lsl_local_clock() in seconds.
    [[nodiscard]] double lslTime(TimePoint time) const;

private:
    void measure();

    const Functions &functions_;
    TimePoint measuredAt_;
    double offset_ = 0;  ///< LSL's clock minus the steady clock, seconds
};

}  // namespace lsl
