// Moves host array data that must outlive the call into a manager's memory.
#pragma once
#include <cstring>

#include "util/arraypin.h"
#include "util/frame.h"
#include "util/memory/memorymanager.h"

// Binds `into` to a copy of the pinned array, as long as the array; an empty pin leaves `into`
// empty.
template <pinkind K>
    requires(K == pinkind::byteread || K == pinkind::shortread || K == pinkind::intread)
void copytomemory(const arraypin<K>& pin, memorymanager& pool,
                  allocatedmemory<typename arraypin<K>::element>& into) {
    if (!pin.object()) {
        into.release();
        return;
    }
    jsize length;
    {
        hostcall guard;
        length = arraypin<K>::env->GetArrayLength(pin.object());
    }
    pool.allocate(into, length);
    memcpy(into.get(), pin.get(), static_cast<size_t>(length) * sizeof(typename arraypin<K>::element));
}
