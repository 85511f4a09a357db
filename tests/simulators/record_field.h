#pragma once

#include <cstring>

/// Returns the field at a byte offset of a record.
template <typename T>
T fieldAt(const unsigned char *record, std::size_t offset) {
    T value{};
    std::memcpy(&value, record + offset, sizeof value);
    return value;
}
