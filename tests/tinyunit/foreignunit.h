#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** All that the operations answer from now on follows from this number and the order of calls. */
void seedForeignUnit(uint64_t seed);

#ifdef __cplusplus
}
#endif
