#pragma once

#include <cstddef>

namespace bench {

struct Memory {
    std::size_t resident;   ///< bytes of this process that are in memory, whatever they are for
    std::size_t allocated;  ///< bytes that are handed out by malloc
};

/// What this process uses now, after what it has freed went back to the system.
[[nodiscard]] Memory memoryInUse();

}  // namespace bench
