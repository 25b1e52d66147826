#include "util/memory/memorymanager.h"

#include <jni.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "util/exception.h"

int allocatedbytes;

namespace {

// Below this much free space after a flush, the arena grows at once rather than compacting
// again and again on the way to full.
constexpr uint64_t growthfloor = 0x4B000;

uintptr_t alignup(uintptr_t at, uint32_t alignment) { return (at + alignment - 1) & ~uintptr_t{alignment - 1}; }

uint8_t* newarena(uint64_t capacity) {
    void* p = nullptr;
    return posix_memalign(&p, memorymanager::arenaalignment, capacity + memorymanager::reserve) == 0
               ? static_cast<uint8_t*>(p)
               : nullptr;
}

[[noreturn]] void growthfailed(uint64_t wantedcapacity) {
    char words[200];
    uint64_t kb = wantedcapacity >> 10;
    snprintf(words, sizeof words, "native(MPR: %d)", static_cast<int>(kb > INT32_MAX ? INT32_MAX : kb));
    fail<OutOfMemory>(words);
}

}  // namespace

memorymanager::memorymanager(uint32_t capacity) : capacity(capacity) {
    base = newarena(capacity);
    if (!base) base = newarena(capacity);
    if (!base) fail<OutOfMemory>("native(MPA)");
    memset(base, 0, capacity);
}

memorymanager::~memorymanager() { teardown(); }

void memorymanager::allocatebytes(memoryhandle& handle, uint64_t size, uint32_t alignment) {
    handle.release();
    if (!base) fail<OutOfMemory>("native(MPA)");
    if (size > UINT32_MAX) growthfailed(size);
    if (alignment < 8) alignment = 8;
    uint8_t* at = findroom(size, alignment);
    auto* b = new memoryblock(at, static_cast<uint32_t>(size), alignment);
    blocks.append(*b);
    handle.bind(*b);
}

// Room above the most recent block; compaction, the owner's flush and growth, in that order,
// when there is none.
uint8_t* memorymanager::findroom(uint64_t size, uint32_t alignment) {
    if (blocks.empty()) return roomatbase(size);
    auto fits = [&](uintptr_t at) {
        at = alignup(at, alignment);
        return at - reinterpret_cast<uintptr_t>(base) + size <= capacity ? reinterpret_cast<uint8_t*>(at) : nullptr;
    };
    for (bool retry = true;; retry = false) {
        memoryblock* last = blocks.last();
        if (uint8_t* at = fits(reinterpret_cast<uintptr_t>(last->data) + last->size)) return at;
        if (uint8_t* at = fits(reinterpret_cast<uintptr_t>(compact()))) return at;
        if (!retry) {
            grow();
        } else {
            flush();
            uint8_t* used = compact();
            uint64_t spare = blocks.empty() ? capacity : capacity - static_cast<uint64_t>(used - base);
            if (spare < growthfloor) grow();
        }
        if (blocks.empty()) return roomatbase(size);
    }
}

// With no block left the arena's start is free; a block larger than the whole arena grows it
// first rather than spill past its end.
uint8_t* memorymanager::roomatbase(uint64_t size) {
    while (size > capacity) grow();
    return base;
}

uint8_t* memorymanager::compact() {
    uintptr_t cursor = reinterpret_cast<uintptr_t>(base);
    blocks.each([&](memoryblock& b) {
        cursor = alignup(cursor, b.alignment);
        auto* to = reinterpret_cast<uint8_t*>(cursor);
        if (to != b.data) {
            memmove(to, b.data, b.size);
            b.data = to;
            b.handles.each([&](memoryhandle& h) { h.data = to; });
        }
        cursor += b.size;
    });
    return reinterpret_cast<uint8_t*>(cursor);
}

void memorymanager::grow() {
    auto newcapacity = static_cast<uint64_t>(static_cast<long double>(static_cast<float>(capacity)) *
                                             static_cast<long double>(1.1f));
    // A capacity too small to grow by a tenth would never make room.
    if (newcapacity > UINT32_MAX || newcapacity <= capacity) growthfailed(newcapacity);
    uint8_t* newbase = newarena(newcapacity);
    if (!newbase) growthfailed(newcapacity);
    memcpy(newbase, base, uint64_t{capacity} + reserve);
    free(base);
    uint8_t* oldbase = base;
    base = newbase;
    capacity = static_cast<uint32_t>(newcapacity);
    if (newbase == oldbase) return;
    blocks.each([&](memoryblock& b) {
        b.data = newbase + (b.data - oldbase);
        b.handles.each([&](memoryhandle& h) { h.data = b.data; });
    });
}

void memorymanager::teardown() {
    blocks.each([](memoryblock& b) {
        allocatedbytes -= static_cast<int>(b.size);
        b.size = 0;
        b.data = nullptr;
        b.handles.each([](memoryhandle& h) { h.data = nullptr; });
        // The record now belongs to its handles alone.
        b.unlink();
    });
    free(base);
    base = nullptr;
}

const char* memorymanager::verify() const {
    const char* wrong = nullptr;
    uint8_t* floor = base;
    blocks.each([&](const memoryblock& b) {
        if (wrong) return;
        auto at = reinterpret_cast<uintptr_t>(b.data);
        if (b.alignment < 8 || b.alignment > arenaalignment || (b.alignment & (b.alignment - 1)))
            wrong = "block alignment out of range";
        else if (at & (b.alignment - 1)) wrong = "block misaligned";
        else if (b.data < floor) wrong = "block overlaps the one before or lies below the arena";
        else if (b.data + b.size > base + capacity) wrong = "block reaches past the capacity";
        else if (b.handles.empty()) wrong = "block without handles";
        b.handles.each([&](const memoryhandle& h) {
            if (!wrong && h.block != &b) wrong = "handle linked in another block";
            if (!wrong && h.data != b.data) wrong = "handle with a stale address";
        });
        floor = b.data + b.size;
    });
    return wrong;
}

// No try block: nothing here can fail.
extern "C" JNIEXPORT jint JNICALL Java_ja_za(JNIEnv*, jobject) { return allocatedbytes; }
