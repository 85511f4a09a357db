#include "http/freed_memory.h"

#include <malloc.h>

// The heap of Windows returns large blocks by itself.
void freed_memory::returnLargeBlocks() {}

void freed_memory::giveBack() {
    _heapmin();
}
