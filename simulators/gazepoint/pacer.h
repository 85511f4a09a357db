#pragma once

#include <cstdint>
#include <optional>

namespace sim::gazepoint {

/// The sampling times of the device: an even grid without drift, plus a small jitter as in a real camera.
class Pacer {
public:
    /// Takes the nominal sample rate. A 60 Hz tracker really takes 60.9 samples per second.
    explicit Pacer(double rateHz);

    /// Returns the time of the next sample if it is due at `now_s`. Several samples may be due.
    ///
    /// After a delay of more than a second, for instance while the machine was suspended, the missed samples are
    /// skipped.
    [[nodiscard]] std::optional<double> next(double now_s);

    /// Returns the seconds until the next sample is due.
    [[nodiscard]] double wait_s(double now_s) const;

private:
    [[nodiscard]] double moment_s() const;

    double period_s_;
    double origin_s_ = 0;
    std::int64_t index_ = 1;
};

}  // namespace sim::gazepoint
