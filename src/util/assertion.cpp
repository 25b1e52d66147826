#include "util/assertion.h"

#include <cstdio>
#include <cstdlib>

void assertionfailed(const char* expression, const char* file, int line) {
    fprintf(stderr, "Assertion failed: %s, file %s, line %d\n", expression, file, line);
    fflush(stderr);
    abort();
}
