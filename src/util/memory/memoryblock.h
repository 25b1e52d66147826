// One block of a manager's arena: where it is, how big, and the handles through which holders
// reach it. A block lives as long as its last handle, possibly longer than its manager.
#pragma once
#include <cstddef>
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

    // Records are recycled: a block is made at nearly every allocation and dies at a release,
    // and the C library's heap would cost as much as the rest of the allocation.
    static void* operator new(size_t bytes);
    static void operator delete(void* record);
};
