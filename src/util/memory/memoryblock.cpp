#include "util/memory/memoryblock.h"

#include <new>

namespace {

// Records of dead blocks, kept for the next ones; as many as were ever alive at once.
struct sparerecord {
    sparerecord* next;
};
sparerecord* spares;

// Under AddressSanitizer records go back to the heap, where a use after the last release shows.
#ifdef __SANITIZE_ADDRESS__
constexpr bool recycle = false;
#else
constexpr bool recycle = true;
#endif

}  // namespace

void* memoryblock::operator new(size_t bytes) {
    if (!recycle || !spares) return ::operator new(bytes);
    sparerecord* s = spares;
    spares = s->next;
    return s;
}

void memoryblock::operator delete(void* record) {
    if (!recycle) return ::operator delete(record);
    auto* s = static_cast<sparerecord*>(record);
    s->next = spares;
    spares = s;
}
