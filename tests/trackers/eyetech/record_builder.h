#pragma once

#include "trackers/eyetech/quicklink2.h"

#include <cstring>

/// Puts a field where the vendor's record has it, in bytes from its start.
template <typename Value>
void put(QLFrameRecord &record, int offset, Value value) {
    std::memcpy(record.bytes + offset, &value, sizeof value);
}

inline void putImage(QLFrameRecord &record, const unsigned char *pixels, int width, int height) {
    put(record, 0, pixels);
    put(record, 8, width);
    put(record, 12, height);
}
