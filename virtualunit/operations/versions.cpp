#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

VersionsHandle Versions_create(void)
{
    return create<VersionsDevice>(__func__);
}

void Versions_release(VersionsHandle handle)
{
    release(__func__, handle);
}

DeviceCode Versions_getFPGAVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return getVersion(__func__, handle, "Versions.fpga", major, minor, release, build);
}

DeviceCode Versions_getSSVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return getVersion(__func__, handle, "Versions.ss", major, minor, release, build);
}

DeviceCode Versions_getFrontVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return getVersion(__func__, handle, "Versions.front", major, minor, release, build);
}

DeviceCode Versions_getVornAuxVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return getVersion(__func__, handle, "Versions.vornAux", major, minor, release, build);
}

DeviceCode Versions_getVornAuxDrvVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return getVersion(__func__, handle, "Versions.vornAuxDrv", major, minor, release, build);
}

DeviceCode Versions_getOSVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return getVersion(__func__, handle, "Versions.os", major, minor, release, build);
}
