#include "frame/DeviceHandle.h"
#include "frame/VornAux2.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <vector>

/**
 * Times operations of the virtual unit that VORN_UNIT names, as this process sees them. A line of
 * output is a name and microseconds: first the very first call, which opens the state file, then
 * the median of single calls.
 */
namespace {

constexpr int rounds = 2000;

using Clock = std::chrono::steady_clock;

double microsecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

bool allSucceeded = true;

template <typename Operation>
void measure(const char *name, Operation operation)
{
    std::vector<double> times;
    times.reserve(rounds);
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        const auto code = operation();
        times.push_back(microsecondsSince(start));
        if (code != DEVICE_OK) {
            std::fprintf(stderr, "unitbench: %s answers %d\n", name, code);
            allSucceeded = false;
            return;
        }
    }
    const auto middle = times.begin() + rounds / 2;
    std::nth_element(times.begin(), middle, times.end());
    std::printf("%s %.2f\n", name, *middle);
}

} // namespace

int main()
{
    const auto start = Clock::now();
    const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
    std::uint16_t volume = 0;
    if (Buzzer_getVolume(buzzer, &volume) != DEVICE_OK)
        return 1;
    std::printf("first-call %.2f\n", microsecondsSince(start));

    const DeviceHandle<Adc_create, Adc_release> adc;
    const DeviceHandle<Backlight_create, Backlight_release> backlight;
    const DeviceHandle<Can_create, Can_release> can;
    const DeviceHandle<Config_create, Config_release> config;
    const DeviceHandle<Diagnostics_create, Diagnostics_release> diagnostics;
    const DeviceHandle<Hardware_create, Hardware_release> hardware;
    const DeviceHandle<LightSensor_create, LightSensor_release> lightSensor;
    const DeviceHandle<Battery_create, Battery_release> battery;
    double volts = 0;
    std::uint8_t intensity = 0;
    std::uint16_t number = 0;
    std::int32_t trigger = 0;
    std::int16_t celsius = 0;
    DiagnosticTimes times{};
    std::array<char, 64> text{};

    measure("Buzzer_getVolume", [&] { return Buzzer_getVolume(buzzer, &volume); });
    measure("Adc_getVoltage", [&] { return Adc_getVoltage(adc, 0, &volts); });
    measure(
        "Backlight_getIntensity", [&] { return Backlight_getIntensity(backlight, &intensity); });
    measure("Can_getBaudrate", [&] { return Can_getBaudrate(can, 1, &number); });
    measure("Config_getStartupTriggerConfig",
        [&] { return Config_getStartupTriggerConfig(config, &trigger); });
    measure(
        "Diagnostics_getPCBTemp", [&] { return Diagnostics_getPCBTemp(diagnostics, &celsius); });
    measure("Diagnostics_getTimers", [&] { return Diagnostics_getTimers(diagnostics, &times); });
    measure("Hardware_getUnitSerialNumber", [&] {
        return Hardware_getUnitSerialNumber(hardware, text.data(), std::uint32_t{text.size()});
    });
    measure("LightSensor_getIlluminance",
        [&] { return LightSensor_getIlluminance(lightSensor, &number); });
    measure(
        "Battery_getVoltageLevel", [&] { return Battery_getVoltageLevel(battery, &intensity); });
    return allSucceeded ? 0 : 1;
}
