#include "linuxunit/calls/perform.h"

/* Linux tells of no start-up reason and no hardware error word; the operations that would give one
 * answer 2. Their texts must be there all the same. */

const char *Diagnostics_startupReasonText(uint16_t /*reason*/)
{
    return "Unknown start-up reason";
}

const char *Diagnostics_hwErrorText(uint16_t status)
{
    return status == 0 ? "No error" : "Unknown hardware error";
}
