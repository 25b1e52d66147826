// One block of a manager's arena: where it is, how big, and the handles through which holders
// reach it. A block lives as long as its last handle, possibly longer than its manager.
#pragma once
#include <cstdint>

#include "util/memory/ringlink.h"

class memoryhandle;

// The sum of the sizes of all live blocks of all managers.
extern int allocatedbytes;

struct memoryblock : ringlink {  // linked in its manager's blocks, oldest first
    uint8_t* data;
    uint32_t size;       // bytes
    uint32_t alignment;  // a power of two from 8 to the arena's 0x80
    ring<memoryhandle> handles;

    memoryblock(uint8_t* data, uint32_t size, uint32_t alignment)
        : data(data), size(size), alignment(alignment) {
        allocatedbytes += static_cast<int>(size);
    }
    ~memoryblock() {
        allocatedbytes -= static_cast<int>(size);
        unlink();
    }
};
