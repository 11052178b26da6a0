#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Drives.h"

using namespace linuxunit;

/* No service knows when a storage device was first stamped; those two operations answer 2. */

DeviceCode Smart_getDeviceSerial(SmartHandle handle, char *buffer, uint32_t size)
{
    return performText(handle, buffer, size, [](Drives &drives) { return drives.serial(0); });
}

DeviceCode Smart_getDeviceSerial2(SmartHandle handle, char *buffer, uint32_t size)
{
    return performText(handle, buffer, size, [](Drives &drives) { return drives.serial(1); });
}

DeviceCode Smart_getRemainingLifetime(SmartHandle handle, uint8_t *percent)
{
    return perform(handle, {percent}, [&](Drives &drives) { *percent = drives.lifetime(0); });
}

DeviceCode Smart_getRemainingLifetime2(SmartHandle handle, uint8_t *percent)
{
    return perform(handle, {percent}, [&](Drives &drives) { *percent = drives.lifetime(1); });
}
