#pragma once

/// What connections have used and freed, and the allocator keeps for later use: a server of short bursts would show the
/// largest of them as its size for ever.
namespace freed_memory {

/// Makes large blocks go back to the system at once. For the whole process; to be called once, before threads use them.
void returnLargeBlocks();
/// Gives all that is free back to the system; takes milliseconds.
void giveBack();

}  // namespace freed_memory
