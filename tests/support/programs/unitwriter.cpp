// Works on the unit of VORN_UNIT as fast as it can, for tests that disturb it in its work.
#include "frame/DeviceHandle.h"
#include "frame/VornAux2.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

namespace {

void require(DeviceCode code, const char *what)
{
    if (code == DEVICE_OK)
        return;
    std::cerr << what << ": " << code << ' ' << deviceErrorText(code) << '\n';
    std::exit(1);
}

/** Values that only one operation writes together, all of them made from the round's number. */
void writeRound(unsigned round)
{
    const DeviceHandle<Backlight_create, Backlight_release> backlight;
    const DeviceHandle<FrontLED_create, FrontLED_release> led;
    const DeviceHandle<Settings_create, Settings_release> settings;
    const auto samples = round % 255 + 1;
    require(Backlight_setAutomaticBLFilter(
                backlight, samples, samples, samples, std::int32_t(samples % 3)),
        "setAutomaticBLFilter");
    const auto shade = std::uint8_t(round % 16);
    require(FrontLED_setColor(led, shade, shade, shade), "setColor");
    const std::string text(200, char('a' + round % 26));
    require(Settings_setString(settings, "unitwriter", text.c_str()), "setString");
}

void writeForEver()
{
    for (unsigned round = 0;; ++round) {
        writeRound(round);
        std::cout << '.' << std::flush;
    }
}

/** Counts a key up, and reads each number back before the next one. */
void countUp(const char *key, int last)
{
    const DeviceHandle<Settings_create, Settings_release> settings;
    for (int number = 1; number <= last; ++number) {
        const auto text = std::to_string(number);
        require(Settings_setString(settings, key, text.c_str()), "setString");
        char read[32] = {};
        require(Settings_getString(settings, key, read, sizeof read), "getString");
        if (text != read) {
            std::cerr << "wrote " << text << " and read " << read << '\n';
            std::exit(1);
        }
    }
}

/** Programs the system supervisor with the two images by turns. */
void programForEver(const char *first, const char *second)
{
    const DeviceHandle<Firmware_create, Firmware_release> firmware;
    for (;;) {
        require(Firmware_startSSUpgrade(firmware, first, false), "startSSUpgrade");
        FirmwareUpgradeStatus status{};
        do {
            require(Firmware_getUpgradeStatus(firmware, &status, true), "getUpgradeStatus");
            require(status.errorCode, "upgrade");
        } while (status.state != FIRMWARE_DONE);
        std::cout << '.' << std::flush;
        std::swap(first, second);
    }
}

} // namespace

int main(int argc, char **argv)
{
    const std::string_view work = argc > 1 ? argv[1] : "";
    if (work == "write" && argc == 2)
        writeForEver();
    else if (work == "count" && argc == 4)
        countUp(argv[2], std::atoi(argv[3]));
    else if (work == "program" && argc == 4)
        programForEver(argv[2], argv[3]);
    else
        std::cerr << "unitwriter write | count KEY LAST | program FILE FILE\n";
    return work == "count" ? 0 : 2;
}
