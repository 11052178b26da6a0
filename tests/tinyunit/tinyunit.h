#pragma once

#include "frame/VornAux2.h"

#include <stddef.h>

/* What the generated operations are made of, as the tiny unit has it. The foreign unit has its own
 * of each, which answer anything. */

/** What every operation answers: the number in TINYUNIT_CODE, 18 without it. The tiny unit makes
 * the file that TINYUNIT_CALLED names when it is asked for the first time. */
DeviceCode answer(void);

/** Sets all bits of an out value if the answer is success: the highest and the lowest that a unit
 *  can tell, and texts without an end. With TINYUNIT_TRACES in the environment it becomes 1 if the
 *  answer is a failure, which a unit shouldn't do. */
void fill(void *value, size_t size);

/** A handle for every family. */
void *device(void);
