#pragma once

#include <cstddef>

namespace bench {

struct Memory {
    std::size_t resident;   ///< bytes of the resident set
    std::size_t allocated;  ///< bytes allocated by malloc
};

/// Releases freed memory to the system. Returns the memory that this process uses.
[[nodiscard]] Memory memoryInUse();

}  // namespace bench
