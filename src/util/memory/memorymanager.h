// A relocating arena. Blocks are taken only above the most recent one, so allocation is a bump
// while room lasts; freed gaps come back when the arena is compacted, which slides every block
// down and rewrites its handles. When compaction is not enough, the manager asks its owner to
// release memory and then grows the arena by a tenth.
#pragma once
#include <cstddef>
#include <cstdint>

#include "util/memory/allocatedmemory.h"
#include "util/memory/memoryblock.h"
#include "util/memory/ringlink.h"

class memorymanager {
public:
    // Bytes above the capacity that are never given out.
    static constexpr uint32_t reserve = 0x32000;
    // The arena's alignment; no block asks for more, so moves keep every block aligned.
    static constexpr uint32_t arenaalignment = 0x80;

    // Throws OutOfMemory "native(MPA)" when the arena cannot be had.
    explicit memorymanager(uint32_t capacity);
    virtual ~memorymanager();
    memorymanager(const memorymanager&) = delete;
    memorymanager& operator=(const memorymanager&) = delete;

    // Binds the handle, after releasing what it held, to a new block of `count` elements. The
    // block's memory is not cleared. Any allocation may move every block of this manager.
    template <class T>
    void allocate(allocatedmemory<T>& handle, int count, uint32_t alignment = alignof(T)) {
        // A negative count asks for more than any arena holds.
        allocatebytes(handle, static_cast<uint64_t>(static_cast<uint32_t>(count)) * sizeof(T), alignment);
    }

    // Slides every block down as far as its alignment allows; returns the end of the used part.
    uint8_t* compact();

    // Grows the arena by a tenth, moving it; throws OutOfMemory "native(MPR: %d)" and keeps the
    // arena as it was when the larger one cannot be had.
    void grow();

    // Gives the arena back. Blocks stay alive for the handles that still hold them, with no
    // memory and size 0; an allocation afterwards fails.
    void teardown();

    // Walks every block and handle; returns what is wrong, or null when order, bounds,
    // alignment and every handle's address hold.
    const char* verify() const;

    uint32_t capacity;
    uint8_t* base;
    ring<memoryblock> blocks;  // oldest first, so in address order

protected:
    // Asks whoever owns the memory to release some; the plain manager has nobody to ask.
    virtual void flush() {}

private:
    void allocatebytes(memoryhandle& handle, uint64_t size, uint32_t alignment);
    uint8_t* findroom(uint64_t size, uint32_t alignment);
    uint8_t* roomatbase(uint64_t size);
};
