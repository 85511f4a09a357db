#include "subject/white_noise.h"

#include "subject/random.h"

#include <cstring>

namespace sim {

WhiteNoise::WhiteNoise(std::uint64_t seed, double deviation_deg) : seed_(mix(seed)), deviation_deg_(deviation_deg) {}

GazeAngles WhiteNoise::at(double seconds) const {
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof seconds);
    std::memcpy(&bits, &seconds, sizeof bits);
    const std::uint64_t key = mix(seed_ ^ bits);
    return {deviation_deg_ * normalOf(key), deviation_deg_ * normalOf(key + 1)};
}

}  // namespace sim
