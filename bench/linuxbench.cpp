#include "frame/DeviceHandle.h"
#include "frame/VornAux2.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

/**
 * Times readings of the device library that the loader finds, beside reading the file behind each
 * of them as plainly as it goes: open, read, close. Arguments are the files. A line of output is a
 * name and both medians in microseconds.
 */
namespace {

constexpr int rounds = 2000;

using Clock = std::chrono::steady_clock;

template <typename Reading>
double microseconds(Reading reading)
{
    const auto start = Clock::now();
    if (!reading())
        return -1;
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double median(std::vector<double> &times)
{
    const auto middle = times.begin() + rounds / 2;
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

bool readPlainly(const char *path)
{
    char text[64];
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    const bool isRead = file >= 0 && ::read(file, text, sizeof text) > 0;
    return ::close(file) == 0 && isRead;
}

/** In turns, so that what else the machine does meets both. */
template <typename Operation>
bool measure(const char *name, const char *path, Operation operation)
{
    std::vector<double> ours;
    std::vector<double> plain;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(microseconds([&] { return operation() == DEVICE_OK; }));
        plain.push_back(microseconds([&] { return readPlainly(path); }));
        if (ours.back() < 0 || plain.back() < 0) {
            std::fprintf(stderr, "linuxbench: %s can't be read\n", name);
            return false;
        }
    }
    std::printf("%s %.2f %.2f\n", name, median(ours), median(plain));
    return true;
}

} // namespace

int main(int count, char **files)
{
    if (count != 4) {
        std::fprintf(stderr, "usage: linuxbench BRIGHTNESS TEMPERATURE CAPACITY\n");
        return 2;
    }
    const DeviceHandle<Backlight_create, Backlight_release> backlight;
    const DeviceHandle<Diagnostics_create, Diagnostics_release> diagnostics;
    const DeviceHandle<Battery_create, Battery_release> battery;
    std::uint8_t intensity = 0;
    std::uint8_t percent = 0;
    std::int16_t celsius = 0;
    const bool done = measure("Backlight_getIntensity", files[1], [&] {
        return Backlight_getIntensity(backlight, &intensity);
    }) && measure("Diagnostics_getPCBTemp", files[2], [&] {
        return Diagnostics_getPCBTemp(diagnostics, &celsius);
    }) && measure("Battery_getVoltageLevel", files[3], [&] {
        return Battery_getVoltageLevel(battery, &percent);
    });
    return done ? 0 : 1;
}
