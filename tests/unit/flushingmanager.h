// A memory manager whose owner is the test: each flush is counted and runs what the test gives,
// standing in for a host that releases memory when asked.
#pragma once
#include <functional>
#include <utility>

#include "util/memory/memorymanager.h"

class flushingmanager : public memorymanager {
public:
    explicit flushingmanager(uint32_t capacity, std::function<void()> onflush = {})
        : memorymanager(capacity), onflush(std::move(onflush)) {}

    int flushes = 0;
    std::function<void()> onflush;

protected:
    void flush() override {
        ++flushes;
        if (onflush) onflush();
    }
};
