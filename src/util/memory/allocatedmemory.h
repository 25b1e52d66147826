// Handles: the only way a holder keeps memory of a manager. The manager may move a block at any
// allocation (compaction, growth) and then rewrites the address cached in each of its handles,
// so a holder keeps the handle and re-reads it; a raw pointer taken from a handle is good only
// until the next allocation in that manager. Handles are never copied implicitly: sharing a
// block is an explicit copyfrom, and the destructor releases.
#pragma once
#include <cstddef>
#include <cstdint>

#include "util/assertion.h"
#include "util/memory/memoryblock.h"
#include "util/memory/ringlink.h"

class memoryhandle : ringlink {  // linked in its block's handles
public:
    memoryhandle(const memoryhandle&) = delete;
    memoryhandle& operator=(const memoryhandle&) = delete;

    bool empty() const { return block == nullptr; }

    // The block's size in bytes; 0 for an empty handle and once the manager is gone.
    uint32_t bytes() const { return block ? block->size : 0; }

    // Lets go of the block, which dies with its last handle. The handle is empty afterwards.
    void release();

protected:
    memoryhandle() = default;
    ~memoryhandle() { release(); }

    // Releases the own block, then shares the other's.
    void share(const memoryhandle& other);

    // Shrinks the block in place; the bytes given back return to the arena at its next compaction.
    void shrink(uint32_t newsize);

    uint8_t* data = nullptr;  // the block's address, rewritten by the manager when it moves
    memoryblock* block = nullptr;

private:
    void bind(memoryblock& b);

    friend class memorymanager;
    friend struct ring<memoryhandle>;
};

// A handle on an array of T; its length is the block's size in elements, so handles sharing a
// block agree on it, and it is 0 once the manager is gone.
template <class T>
class allocatedmemory : public memoryhandle {
public:
    allocatedmemory() = default;

    void copyfrom(const allocatedmemory& other) { share(other); }

    T* get() const { return reinterpret_cast<T*>(data); }
    T& operator[](ptrdiff_t i) const { return get()[i]; }
    int length() const { return static_cast<int>(bytes() / sizeof(T)); }

    // Gives back the end of an over-reserved array. Asking for more than the array holds is a
    // broken precondition of the caller.
    void truncate(int newlength) {
        WEXEL_ASSERT(static_cast<unsigned>(newlength) <= static_cast<unsigned>(length()),
                     "newlength<=length", "util\\memorymanager\\allocatedmemory", 44);
        if (block) shrink(static_cast<uint32_t>(newlength) * sizeof(T));
    }
};
