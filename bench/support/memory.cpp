#include "support/memory.h"

#include <fstream>
#include <malloc.h>
#include <unistd.h>

bench::Memory bench::memoryInUse() {
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    std::size_t totalPages = 0;
    std::size_t residentPages = 0;
    file >> totalPages >> residentPages;
    const struct mallinfo2 heap = mallinfo2();
    return {residentPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), heap.uordblks + heap.hblkhd};
}
