#include "gazepoint/pacer.h"

#include "subject/random.h"

#include <algorithm>

namespace sim::gazepoint {

namespace {

constexpr double kNominal60 = 60;
constexpr double kMeasured60 = 60.9;
constexpr double kJitter = 0.02;  // of the period, to either side: steps of 15.8 to 17.1 ms at 60 Hz
constexpr double kLongestStall = 1;

/// Uniform in -1..1 and the same for the same sample.
double jitterOf(std::int64_t index) {
    return static_cast<double>(mix(static_cast<std::uint64_t>(index)) >> 11) * 0x1p-52 - 1;
}

}  // namespace

Pacer::Pacer(double rate) : period_(1 / (rate == kNominal60 ? kMeasured60 : rate)) {}

std::optional<double> Pacer::next(double now) {
    if (now - moment() > kLongestStall)
        origin_ += now - moment();
    if (wait(now) > 0)
        return std::nullopt;
    const double due = moment();
    ++index_;
    return due;
}

double Pacer::wait(double now) const {
    return std::max(0.0, moment() - now);
}

double Pacer::moment() const {
    return origin_ + (static_cast<double>(index_) + kJitter * jitterOf(index_)) * period_;
}

}  // namespace sim::gazepoint
