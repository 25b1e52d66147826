// Test buffers fenced by sentinels and inaccessible pages, so that a write one element too far
// shows in the sentinels and a read or write past them faults at once.
#pragma once
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

template <class T>
class guarded {
public:
    static constexpr uint8_t sentinel = 0xA5;
    static constexpr size_t fence = 256;  // sentinel bytes on each side, a multiple of 64

    explicit guarded(size_t count) : count(count) {
        page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        size_t inner = fence * 2 + ((count * sizeof(T) + 63) & ~size_t{63});
        innerpages = (inner + page - 1) / page * page;
        total = innerpages + 2 * page;
        region = static_cast<uint8_t*>(mmap(nullptr, total, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(region, page, PROT_NONE);
        mprotect(region + page + innerpages, page, PROT_NONE);
        // The data ends as close to the upper guard page as 64-byte alignment allows.
        uint8_t* end = region + page + innerpages - fence;
        data = reinterpret_cast<T*>(end - ((count * sizeof(T) + 63) & ~size_t{63}));
        memset(region + page, sentinel, innerpages);
    }
    ~guarded() { munmap(region, total); }
    guarded(const guarded&) = delete;
    guarded& operator=(const guarded&) = delete;

    T* get() const { return data; }
    T& operator[](size_t i) const { return data[i]; }
    size_t size() const { return count; }

    // True when no byte outside the data has changed.
    bool intact() const {
        const uint8_t* first = region + page;
        const uint8_t* begin = reinterpret_cast<const uint8_t*>(data);
        const uint8_t* last = region + page + innerpages;
        for (const uint8_t* p = first; p < begin; ++p)
            if (*p != sentinel) return false;
        for (const uint8_t* p = begin + count * sizeof(T); p < last; ++p)
            if (*p != sentinel) return false;
        return true;
    }

private:
    size_t count, page, innerpages, total;
    uint8_t* region;
    T* data;
};
