// Broken preconditions are not failures the host can handle: they print where they stand and abort.
#pragma once

[[noreturn]] void assertionfailed(const char* expression, const char* file, int line);

#define WEXEL_ASSERT(condition, expression, file, line) \
    ((condition) ? (void)0 : assertionfailed(expression, file, line))
