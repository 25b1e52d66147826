// A fixed number of handles in one heap allocation, for holders that keep one block per item
// (the glyphs of a font). The handles themselves do not move, so managers can rewrite them.
#pragma once
#include <cstdlib>
#include <new>

#include "util/exception.h"
#include "util/memory/allocatedmemory.h"

template <class T>
class handlearray {
public:
    // Throws OutOfMemory "native(SIA)" when the slots cannot be had. Every slot starts empty.
    explicit handlearray(int count) : count(count > 0 ? count : 0) {
        if (this->count == 0) return;
        slots = static_cast<allocatedmemory<T>*>(
            aligned_alloc(alignof(allocatedmemory<T>), sizeof(allocatedmemory<T>) * static_cast<size_t>(this->count)));
        if (!slots) fail<OutOfMemory>("native(SIA)");
        for (int i = 0; i < this->count; ++i) new (slots + i) allocatedmemory<T>();
    }
    ~handlearray() {
        for (int i = 0; i < count; ++i) slots[i].~allocatedmemory<T>();
        free(slots);
    }
    handlearray(const handlearray&) = delete;
    handlearray& operator=(const handlearray&) = delete;

    int size() const { return count; }
    allocatedmemory<T>& operator[](int i) const { return slots[i]; }

private:
    int count;
    allocatedmemory<T>* slots = nullptr;
};
