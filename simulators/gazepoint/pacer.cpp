#include "gazepoint/pacer.h"

#include "subject/random.h"

#include <algorithm>

namespace sim::gazepoint {

namespace {

constexpr double nominal60Hz = 60;
constexpr double measured60Hz = 60.9;
constexpr double maxJitter = 0.02;  // fraction of the period: intervals of 15.8 to 17.1 ms at 60 Hz
constexpr double maxStall_s = 1;

/// Returns a value in -1..1, uniform over the samples.
double jitterOf(std::int64_t index) {
    return static_cast<double>(mix(static_cast<std::uint64_t>(index)) >> 11) * 0x1p-52 - 1;
}

}  // namespace

Pacer::Pacer(double rateHz) : period_s_(1 / (rateHz == nominal60Hz ? measured60Hz : rateHz)) {}

std::optional<double> Pacer::next(double now_s) {
    if (now_s - moment_s() > maxStall_s)
        origin_s_ += now_s - moment_s();
    if (wait_s(now_s) > 0)
        return std::nullopt;
    const double due = moment_s();
    ++index_;
    return due;
}

double Pacer::wait_s(double now_s) const {
    return std::max(0.0, moment_s() - now_s);
}

double Pacer::moment_s() const {
    return origin_s_ + (static_cast<double>(index_) + maxJitter * jitterOf(index_)) * period_s_;
}

}  // namespace sim::gazepoint
