#pragma once

#include "trackers/eyetech/sdk/quicklink2.h"

#include <cstring>

/// Writes a field at a byte offset.
template <typename Value>
void put(quicklink2::QLFrameRecord &record, int offset, Value value) {
    std::memcpy(record.bytes + offset, &value, sizeof value);
}

inline void putImage(quicklink2::QLFrameRecord &record, const unsigned char *pixels, int width, int height) {
    put(record, 0, pixels);
    put(record, 8, width);
    put(record, 12, height);
}
