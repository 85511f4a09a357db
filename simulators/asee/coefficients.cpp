#include "asee/coefficients.h"

#include "trackers/asee/sdk/asee_sdk.h"

#include <cstring>

namespace sim::asee_pro {

namespace {

constexpr char mark[] = "OCELA SIMULATED COEFFICIENTS 1";

}  // namespace

void Coefficients::write(void *bytes) const {
    auto *block = static_cast<unsigned char *>(bytes);
    std::memset(block, 0, asee_sdk::coefficientBytes);
    std::memcpy(block, mark, sizeof mark);
    std::memcpy(block + sizeof mark, this, sizeof *this);
}

bool Coefficients::areIn(const void *bytes) {
    return bytes != nullptr && std::memcmp(bytes, mark, sizeof mark) == 0;
}

}  // namespace sim::asee_pro
