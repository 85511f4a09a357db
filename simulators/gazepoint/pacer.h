#pragma once

#include <cstdint>
#include <optional>

namespace sim::gazepoint {

/// The moments at which the device takes its samples: an even grid without drift, on which each sample is a
/// little early or late as a camera's are.
class Pacer {
public:
    /// Nominal samples a second. A 60 Hz device really takes 60.9.
    explicit Pacer(double rate);

    /// The moment of the next sample when it is due at `now`. Call it until nothing is due any more.
    ///
    /// After a stall of more than a second (a suspended machine) the samples in between are left out.
    std::optional<double> next(double now);

    /// Seconds until the next sample is due.
    [[nodiscard]] double wait(double now) const;

private:
    [[nodiscard]] double moment() const;

    double period_;
    double origin_ = 0;
    std::int64_t index_ = 1;
};

}  // namespace sim::gazepoint
