#pragma once

#include <cstdio>
#include <cstdlib>

#define REQUIRE(condition)                                      \
    do {                                                        \
        if (!(condition)) {                                     \
            std::fprintf(stderr, "not true: %s\n", #condition); \
            std::abort();                                       \
        }                                                       \
    } while (false)
