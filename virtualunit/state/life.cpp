#include "virtualunit/state/life.h"

#include "frame/VornAux2.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace virtualunit::life {

namespace {

constexpr double second = 1000; // the clock counts milliseconds
constexpr double minute = 60 * second;
constexpr double day = 24 * 60 * minute;

/** Evenly spread over -1 to 1, the same for the same arguments. */
double noise(std::uint64_t seed, std::int64_t step)
{
    std::uint64_t x = seed * 0x9E3779B97F4A7C15U + std::uint64_t(step);
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    x ^= x >> 31;
    return double(x >> 11) * 0x1p-52 - 1;
}

double elapsed(const Cell &cell, std::int64_t now)
{
    return double(std::max<std::int64_t>(0, now - cell.since));
}

bool on(const Snapshot &unit, Key key)
{
    return unit[key].number != 0;
}

// Temperatures

constexpr double temperatureLag = 10 * minute;
constexpr double temperatureNoise = 0.45;

/** How much warmer than its surroundings a sensor gets in a computer that does nothing. */
double ownHeat(const Snapshot &unit, Key key)
{
    constexpr double byKind[] = {28, 11, 3, 18, 10, 22, 21, 8};
    constexpr Key firstSensor = "Diagnostics.pmTemp0";
    constexpr Key firstKind = "Diagnostics.pmKind0";
    if (key.index == Key("Diagnostics.ssTemp").index)
        return 14;
    if (key.index == Key("Diagnostics.pcbTemp").index)
        return 17;
    if (key.index == Key("Battery.temperature").index)
        return 3;
    const auto kind = std::size_t(unit[firstKind + (key.index - firstSensor.index)].number);
    return kind < std::size(byKind) ? byKind[kind] : byKind[7];
}

bool heats(const Snapshot &unit)
{
    return on(unit, "Feature.heater") &&
           unit["Unit.ambientTemp"].number < unit["Config.heatingTempLimit"].number;
}

double loadHeat(const Snapshot &unit)
{
    double heat = 0;
    if (on(unit, "Hardware.hasDisplay") && on(unit, "Power.blPowerStatus"))
        heat += 4 * unit["Backlight.intensity"].number / 255;
    if (on(unit, "Power.canPowerStatus"))
        heat += 0.5;
    heat += 0.8 * std::popcount(unsigned(unit["Power.videoPowerStatus"].number));
    if (on(unit, "Feature.externalFan") && on(unit, "Power.extFanPowerStatus"))
        heat -= 5;
    if (heats(unit))
        heat += 12;
    return heat;
}

/** The temperature that a sensor tends to. */
double targetTemperature(const Snapshot &unit, Key key)
{
    const auto &cell = unit[key];
    if (cell.pinned)
        return cell.number;
    const double ambient = unit["Unit.ambientTemp"].number;
    if (!on(unit, "Unit.running"))
        return ambient;
    const bool isBattery = key.index == Key("Battery.temperature").index;
    const double load = isBattery ? (on(unit, "Battery.powerSource") ? 0 : 4) : loadHeat(unit);
    return ambient + ownHeat(unit, key) + load;
}

double temperatureAt(const Snapshot &unit, Key key, std::int64_t now)
{
    const auto &cell = unit[key];
    if (cell.pinned)
        return cell.number;
    const double target = targetTemperature(unit, key);
    return target + (cell.number - target) * std::exp(-elapsed(cell, now) / temperatureLag);
}

double temperatureWithNoise(const Snapshot &unit, Key key, std::int64_t now)
{
    const double cycle = std::fmod(double(now), 97 * second) / (97 * second);
    const double phase = cycle + double(key.index) / 7;
    return temperatureAt(unit, key, now) +
           temperatureNoise * std::sin(2 * std::numbers::pi * phase);
}

/** The extreme of a sensor since the state last changed; between changes it moves one way only. */
double extremeAt(const Snapshot &unit, Key key, std::int64_t now, bool highest)
{
    const auto &cell = unit[key];
    const double end = temperatureAt(unit, key, now);
    if (cell.pinned)
        return end;
    return highest ? std::max(cell.number, end) + temperatureNoise
                   : std::min(cell.number, end) - temperatureNoise;
}

double seenExtreme(const Snapshot &unit, Key key, std::int64_t now, bool highest)
{
    const auto further = [highest](double a, double b) {
        return highest ? std::max(a, b) : std::min(a, b);
    };
    const double stored = unit[key].number;
    if (key.property().name.starts_with("Battery."))
        return further(stored, extremeAt(unit, "Battery.temperature", now, highest));
    return further(stored, further(extremeAt(unit, "Diagnostics.ssTemp", now, highest),
                               extremeAt(unit, "Diagnostics.pcbTemp", now, highest)));
}

// Counters

struct Band {
    Key counter;
    double above;
    double upTo;
};

constexpr double endless = 1000;

constexpr Band unitBands[] = {
    {"Diagnostics.runTime40To60", 40, 60},
    {"Diagnostics.runTime60To70", 60, 70},
    {"Diagnostics.runTime70To80", 70, 80},
    {"Diagnostics.runTimeAbove80", 80, endless},
};

constexpr Band batteryBands[] = {
    {"Battery.runTimeBelowMinus20", -endless, -20},
    {"Battery.runTimeMinus20To0", -20, 0},
    {"Battery.runTime0To40", 0, 40},
    {"Battery.runTime40To60", 40, 60},
    {"Battery.runTime60To70", 60, 70},
    {"Battery.runTime70To80", 70, 80},
    {"Battery.runTimeAbove80", 80, endless},
};

/** Bands count by the temperature that the unit tends to, so that no counter ever goes back. */
template <std::size_t Count>
bool inBand(const Band (&bands)[Count], Key counter, double celsius)
{
    return std::any_of(std::begin(bands), std::end(bands), [&](const Band &band) {
        return band.counter.index == counter.index && celsius > band.above && celsius <= band.upTo;
    });
}

bool counts(const Snapshot &unit, Key key)
{
    if (!on(unit, "Unit.running"))
        return false;
    const auto is = [key](Key other) { return key.index == other.index; };
    if (is("Diagnostics.totalRunTime"))
        return true;
    if (is("Diagnostics.totalHeatTime"))
        return heats(unit);
    if (inBand(unitBands, key, targetTemperature(unit, "Diagnostics.pcbTemp")))
        return true;
    if (!on(unit, "Battery.available"))
        return false;
    if (is("Battery.runTimeMainPower"))
        return on(unit, "Battery.powerSource");
    if (is("Battery.runTimeBatteryPower"))
        return !on(unit, "Battery.powerSource");
    return inBand(batteryBands, key, targetTemperature(unit, "Battery.temperature"));
}

double minutesAt(const Snapshot &unit, Key key, std::int64_t now)
{
    const auto &cell = unit[key];
    const double passed = counts(unit, key) ? elapsed(cell, now) / minute : 0;
    return std::min(cell.number + passed, key.property().reports.high);
}

// Battery

bool tooCold(double celsius)
{
    return celsius < 0;
}

bool tooHot(double celsius)
{
    return celsius > 45;
}

double chargeAt(const Snapshot &unit, Key key, std::int64_t now)
{
    constexpr double chargingRate = 0.5;    // percent a minute
    constexpr double dischargingRate = 0.4; // percent a minute
    const auto &cell = unit[key];
    const double passed = elapsed(cell, now) / minute;
    if (!on(unit, "Battery.available") || !on(unit, "Unit.running"))
        return cell.number;
    if (!on(unit, "Battery.powerSource"))
        return std::max(0.0, cell.number - dischargingRate * passed);
    const double celsius = targetTemperature(unit, "Battery.temperature");
    if (tooCold(celsius) || tooHot(celsius) || on(unit, "Battery.hwErrorStatus"))
        return cell.number;
    return std::max(cell.number, std::min(100.0, cell.number + chargingRate * passed));
}

double chargingStatus(const Snapshot &unit, std::int64_t now)
{
    if (!on(unit, "Battery.powerSource") || on(unit, "Battery.hwErrorStatus"))
        return CHARGING_IDLE;
    const double celsius = targetTemperature(unit, "Battery.temperature");
    if (tooCold(celsius))
        return CHARGING_TOO_COLD;
    if (tooHot(celsius))
        return CHARGING_TOO_HOT;
    return valueAt(unit, "Battery.voltageLevel", now) >= 100 ? CHARGING_FULL : CHARGING_ACTIVE;
}

// Supply rails

double nominalVolts(const Snapshot &unit, Key key, std::int64_t now)
{
    constexpr double residue = 0.02;
    const double nominal = unit[key].number;
    const auto is = [key](Key other) { return key.index == other.index; };
    const bool onBattery = on(unit, "Feature.battery") && on(unit, "Battery.available") &&
                           !on(unit, "Battery.powerSource");
    if (is("Adc.voltage0") && onBattery)
        return residue;
    if (is("Adc.voltage3") && !on(unit, "Power.videoPowerStatus"))
        return residue;
    if (is("Adc.voltage6") && !on(unit, "Power.blPowerStatus"))
        return residue;
    if (is("Adc.voltage16"))
        return nominal * (0.9 + 0.001 * valueAt(unit, "Battery.voltageLevel", now));
    return nominal;
}

double volts(const Snapshot &unit, Key key, std::int64_t now)
{
    constexpr double spread = 0.004;
    const double nominal = nominalVolts(unit, key, now);
    const double measured = nominal * (1 + spread * noise(key.index, now / 500));
    return std::round(measured * 1000) / 1000;
}

// Light

constexpr std::int64_t samplePeriod = 100; // milliseconds
constexpr double standardRangeLimit = 4095;
constexpr std::size_t longestWindow = 255;

/** The day from six to six, with clouds and now and then a reflection. */
double sampleAt(const Snapshot &unit, std::int64_t sample, int samplingMode)
{
    constexpr Key light = "LightSensor.illuminance";
    if (unit[light].pinned)
        return unit[light].number;
    const auto time = double(sample * samplePeriod);
    const double hour = std::fmod(time, day) / day * 24;
    const double height = std::max(0.0, std::sin(std::numbers::pi * (hour - 6) / 12));
    const double clouds =
        0.75 + 0.25 * std::sin(2 * std::numbers::pi * std::fmod(time, 17 * minute) / (17 * minute));
    double lux = 6 + unit[light].number + 9000 * height * std::sqrt(height) * clouds;
    lux *= 1 + 0.02 * noise(1, sample);
    if (noise(2, sample) > 0.95)
        lux += 900;
    return samplingMode == SAMPLING_STANDARD ? std::min(lux, standardRangeLimit)
                                             : std::min(lux, 65535.0);
}

double targetIntensity(const Snapshot &unit, std::int64_t now)
{
    const LightFilter filter{unit["Backlight.averageWindowSize"].number,
        unit["Backlight.rejectWindowSize"].number, unit["Backlight.rejectDeltaLux"].number,
        int(unit["Backlight.samplingMode"].number)};
    const double lux = filteredLight(unit, filter, now);
    const double half = 300 / unit["Backlight.kValue"].number;
    return 20 + 235 * (lux > 0 ? lux / (lux + half) : 0);
}

double intensityAt(const Snapshot &unit, Key key, std::int64_t now)
{
    const auto &cell = unit[key];
    if (!on(unit, "Backlight.automaticBLStatus"))
        return cell.number;
    const double stepsPerSecond = on(unit, "Backlight.softTransitions") ? 40 : 400;
    const double reach = stepsPerSecond * elapsed(cell, now) / second;
    const double target = targetIntensity(unit, now);
    return std::clamp(target, cell.number - reach, cell.number + reach);
}

double illuminance(const Snapshot &unit, std::int64_t now)
{
    if (!on(unit, "LightSensor.averaging")) {
        const bool extended = on(unit, "LightSensor.operatingRange");
        return sampleAt(unit, now / samplePeriod, extended ? SAMPLING_EXTENDED : SAMPLING_STANDARD);
    }
    const LightFilter filter{unit["LightSensor.averageWindowSize"].number,
        unit["LightSensor.rejectWindowSize"].number, unit["LightSensor.rejectDeltaLux"].number,
        int(unit["LightSensor.samplingMode"].number)};
    return filteredLight(unit, filter, now);
}

double movedTo(const Snapshot &unit, Key key, std::int64_t now)
{
    switch (key.property().living) {
    case Living::Temperature:
        return temperatureAt(unit, key, now);
    case Living::Lowest:
        return seenExtreme(unit, key, now, false);
    case Living::Highest:
        return seenExtreme(unit, key, now, true);
    case Living::Minutes:
        return minutesAt(unit, key, now);
    case Living::Charge:
        return chargeAt(unit, key, now);
    case Living::Ramp:
        return intensityAt(unit, key, now);
    default:
        return unit[key].number;
    }
}

double rawValueAt(const Snapshot &unit, Key key, std::int64_t now)
{
    switch (key.property().living) {
    case Living::Rail:
        return volts(unit, key, now);
    case Living::Temperature:
        return temperatureWithNoise(unit, key, now);
    case Living::Charging:
        return chargingStatus(unit, now);
    case Living::Light:
        return illuminance(unit, now);
    case Living::Minutes:
    case Living::Charge:
        return std::floor(settledAt(unit, key, now));
    default:
        return settledAt(unit, key, now);
    }
}

} // namespace

bool accumulates(const Property &property)
{
    return property.living != Living::No && property.living != Living::Rail &&
           property.living != Living::Charging && property.living != Living::Light;
}

double settledAt(const Snapshot &unit, Key key, std::int64_t now)
{
    const auto &range = key.property().reports;
    return std::clamp(movedTo(unit, key, now), range.low, range.high);
}

double valueAt(const Snapshot &unit, Key key, std::int64_t now)
{
    const auto &property = key.property();
    const auto &cell = unit[key];
    if (property.living == Living::No || cell.pinned)
        return cell.number;
    double value = rawValueAt(unit, key, now);
    if (property.kind == Kind::Integer)
        value = std::round(value);
    return std::clamp(value, property.reports.low, property.reports.high);
}

double filteredLight(const Snapshot &unit, const LightFilter &filter, std::int64_t now)
{
    constexpr Key light = "LightSensor.illuminance";
    if (unit[light].pinned)
        return unit[light].number;
    const auto window = [](double samples) {
        return std::int64_t(std::clamp(samples, 0.0, double(longestWindow)));
    };
    const auto average = std::max<std::int64_t>(1, window(filter.averageWindow));
    const auto reject = window(filter.rejectWindow);

    // samples[0] is the newest.
    double samples[2 * longestWindow];
    const auto newest = now / samplePeriod;
    const auto count = average + reject;
    for (std::int64_t i = 0; i < count; ++i)
        samples[i] = sampleAt(unit, newest - i, filter.samplingMode);

    // A sample counts unless it is far from the mean of the samples before it.
    double before = 0;
    for (std::int64_t i = 1; i <= reject; ++i)
        before += samples[i];
    double sum = 0;
    double all = 0;
    int taken = 0;
    for (std::int64_t i = 0; i < average; ++i) {
        all += samples[i];
        if (reject == 0 || std::abs(samples[i] - before / double(reject)) <= filter.rejectDelta) {
            sum += samples[i];
            ++taken;
        }
        if (reject > 0 && i + 1 < average)
            before += samples[i + 1 + reject] - samples[i + 1];
    }
    return taken > 0 ? sum / taken : all / double(average);
}

} // namespace virtualunit::life
