#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/DigitalLines.h"

using namespace linuxunit;

DeviceCode DigIO_getDigIO(DigIOHandle handle, uint8_t *mask)
{
    return perform(handle, {mask}, [&](DigitalLines &lines) { *mask = lines.read(); });
}

DeviceCode DigIO_setDigIO(DigIOHandle handle, uint8_t mask)
{
    return perform(handle, {}, [&](DigitalLines &lines) { lines.write(mask); });
}
