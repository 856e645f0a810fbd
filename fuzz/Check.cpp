#include "Check.h"

#include <cstdio>
#include <cstdlib>

void FailCheck(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}
