#include "util/memory/allocatedmemory.h"

void memoryhandle::bind(memoryblock& b) {
    block = &b;
    data = b.data;
    b.handles.append(*this);
}

void memoryhandle::release() {
    if (!block) return;
    unlink();
    if (block->handles.empty()) delete block;
    block = nullptr;
    data = nullptr;
}

void memoryhandle::share(const memoryhandle& other) {
    if (&other == this) return;
    release();
    if (other.block) bind(*other.block);
}

void memoryhandle::shrink(uint32_t newsize) {
    allocatedbytes += static_cast<int>(newsize - block->size);
    block->size = newsize;
}
