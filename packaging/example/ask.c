/* Asks the device library that the loader finds for the version of its driver and for the
 * temperature of its circuit board. */
#include <VornAux2.h>

#include <stdio.h>

static void tell(const char *what, DeviceCode code)
{
    if (code == DEVICE_NOT_SUPPORTED)
        printf("%s: this unit has none\n", what);
    else if (code != DEVICE_OK)
        printf("%s: error %d, %s\n", what, (int)code, deviceErrorText(code));
}

int main(void)
{
    const VersionsHandle versions = Versions_create();
    uint8_t major = 0, minor = 0, release = 0, build = 0;
    DeviceCode code = Versions_getVornAuxDrvVersion(versions, &major, &minor, &release, &build);
    if (code == DEVICE_OK)
        printf("Driver: %u.%u.%u.%u\n", major, minor, release, build);
    tell("Driver", code);
    Versions_release(versions);

    const DiagnosticsHandle diagnostics = Diagnostics_create();
    int16_t celsius = 0;
    code = Diagnostics_getPCBTemp(diagnostics, &celsius);
    if (code == DEVICE_OK)
        printf("Board: %d degrees Celsius\n", celsius);
    tell("Board", code);
    Diagnostics_release(diagnostics);
    return 0;
}
