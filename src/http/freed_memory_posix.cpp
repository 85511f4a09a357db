#include "http/freed_memory.h"

#include <malloc.h>

// Left to itself, glibc takes the first large block that is freed as the measure of what to keep from then on. Smaller
// files are worth keeping memory for.
void freed_memory::returnLargeBlocks() {
    constexpr int largeBytes = 4 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, largeBytes);
    mallopt(M_TRIM_THRESHOLD, 2 * largeBytes);
}

void freed_memory::giveBack() {
    malloc_trim(0);
}
