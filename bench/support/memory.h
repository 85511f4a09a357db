#pragma once

#include <cstddef>

namespace bench {

struct Memory {
    std::size_t resident;   ///< bytes of the resident set
    std::size_t allocated;  ///< bytes allocated by malloc
};

/// Returns freed memory to the system, and then the memory that this process uses.
[[nodiscard]] Memory memoryInUse();

}  // namespace bench
