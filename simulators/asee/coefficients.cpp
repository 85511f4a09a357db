#include "asee/coefficients.h"

#include "trackers/asee/asee_sdk.h"

#include <cstring>

namespace sim::asee_pro {

namespace {

constexpr char kMark[] = "OCELA SIMULATED COEFFICIENTS 1";

}  // namespace

void Coefficients::write(void *bytes) const {
    auto *block = static_cast<unsigned char *>(bytes);
    std::memset(block, 0, asee::coefficientBytes);
    std::memcpy(block, kMark, sizeof kMark);
    std::memcpy(block + sizeof kMark, this, sizeof *this);
}

bool Coefficients::areIn(const void *bytes) {
    return bytes != nullptr && std::memcmp(bytes, kMark, sizeof kMark) == 0;
}

}  // namespace sim::asee_pro
