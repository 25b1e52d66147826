// The host's pool (class ba): a memory manager that, when full, asks the host to release memory
// through the callback h of the toolkit that was current when the pool was made.
#pragma once
#include "util/hostseam.h"
#include "util/memory/memorymanager.h"

struct toolkit;

struct memorypool : memorymanager {
    memorypool(uint32_t capacity, struct toolkit* toolkit) : memorymanager(capacity), toolkit(toolkit) {}

    struct toolkit* const toolkit;
    hostobject* hostref = nullptr;  // weak: the ba object; nothing calls it

protected:
    void flush() override;
};
