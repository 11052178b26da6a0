#pragma once

#include "frame/VornAux2.h"

/** What every operation answers: the number in TINYUNIT_CODE, 18 without it. */
DeviceCode answer(void);

/** A handle for every family. */
void *device(void);
