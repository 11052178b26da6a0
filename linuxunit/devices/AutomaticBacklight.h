#pragma once

#include "linuxunit/devices/LightFilter.h"

/**
 * The control of the backlight by the light sensor: a thread of this library, at most one on the
 * machine, which begins with start() and ends with stop(), in whatever process, or with the last
 * handle of the process that started it. It samples the light five times a second and sets the
 * intensity to 15 + kValue * log10(1 + lux), at most 255; softly it moves there by 4 steps at a
 * time. A sensor or backlight that fails is passed over until it is back.
 *
 * A file beside the settings, locked while the thread runs, tells other processes. Any thread.
 */
namespace linuxunit::automatic {

inline constexpr double kValue = 50;

/** Throws StoreFailed where there is no folder for the lock. Does nothing if it runs already. */
void start();
void stop();
bool isRunning();

/** Settings of the control, kept across runs and heeded at once. */
struct Settings {
    bool softTransitions = true;
    FilterSettings filter;
};
Settings settings();
void setSoftTransitions(bool soft);
void setFilter(const FilterSettings &filter);

/** What the light asks for, 0 to 255. */
std::uint8_t intensityFor(double lux);

} // namespace linuxunit::automatic
