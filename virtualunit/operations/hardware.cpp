#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

HardwareHandle Hardware_create(void)
{
    return create<HardwareDevice>(__func__);
}

void Hardware_release(HardwareHandle handle)
{
    release(__func__, handle);
}

DeviceCode Hardware_getMainPcbSerial(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.mainPcbSerial", buffer, size);
}

DeviceCode Hardware_getUnitSerialNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.unitSerialNumber", buffer, size);
}

DeviceCode Hardware_getMainPcbArticleNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.mainPcbArticleNumber", buffer, size);
}

DeviceCode Hardware_getMainManufacturingDate(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.mainManufacturingDate", buffer, size);
}

DeviceCode Hardware_getMainHardwareVersion(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.mainHardwareVersion", buffer, size);
}

DeviceCode Hardware_getMainProductRevision(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.mainProductRevision", buffer, size);
}

DeviceCode Hardware_getMainProductArticleNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.mainProductArticleNumber", buffer, size);
}

DeviceCode Hardware_getAddonPcbSerial(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.addonPcbSerial", buffer, size);
}

DeviceCode Hardware_getAddonArticleNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.addonArticleNumber", buffer, size);
}

DeviceCode Hardware_getAddonManufacturingDate(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.addonManufacturingDate", buffer, size);
}

DeviceCode Hardware_getAddonHardwareVersion(HardwareHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Hardware.addonHardwareVersion", buffer, size);
}

DeviceCode Hardware_getEthernetCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.ethernetCount", count});
}

DeviceCode Hardware_getCanCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.canCount", count});
}

DeviceCode Hardware_getVideoCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.videoCount", count});
}

DeviceCode Hardware_getUsbCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.usbCount", count});
}

DeviceCode Hardware_getSerialCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.serialCount", count});
}

DeviceCode Hardware_getDigitalInputCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.digitalInputCount", count});
}

DeviceCode Hardware_getConfigurableInputCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.configurableInputCount", count});
}

DeviceCode Hardware_getPwmOutputCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.pwmOutputCount", count});
}

DeviceCode Hardware_getConfigurableButtonCount(HardwareHandle handle, uint8_t *count)
{
    return get(__func__, handle, Out{"Hardware.configurableButtonCount", count});
}

DeviceCode Hardware_hasDisplay(HardwareHandle handle, DeviceBool *present)
{
    return get(__func__, handle, Out{"Hardware.hasDisplay", present});
}

DeviceCode Hardware_hasTouchscreen(HardwareHandle handle, DeviceBool *present)
{
    return get(__func__, handle, Out{"Hardware.hasTouchscreen", present});
}

DeviceCode Hardware_hasWlan(HardwareHandle handle, DeviceBool *present)
{
    return get(__func__, handle, Out{"Hardware.hasWlan", present});
}

DeviceCode Hardware_hasGps(HardwareHandle handle, DeviceBool *present)
{
    return get(__func__, handle, Out{"Hardware.hasGps", present});
}

DeviceCode Hardware_hasGsm(HardwareHandle handle, DeviceBool *present)
{
    return get(__func__, handle, Out{"Hardware.hasGsm", present});
}

DeviceCode Hardware_hasBluetooth(HardwareHandle handle, DeviceBool *present)
{
    return get(__func__, handle, Out{"Hardware.hasBluetooth", present});
}
