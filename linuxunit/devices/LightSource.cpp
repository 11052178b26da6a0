#include "linuxunit/devices/LightSource.h"

#include "frame/VornAux2.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/iio.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

namespace linuxunit {

namespace {

/** The channel of a device whose value is in lux; empty if it has none. */
std::string luxChannel(const std::string &folder)
{
    for (const char *name : {"in_illuminance", "in_illuminance0"}) {
        const auto path = std::string(folder).append("/").append(name);
        if (exists(path + "_input") || (exists(path + "_raw") && hasIioScale(folder, name)))
            return name;
    }
    // Sensors of the HID class gave their lux as an intensity before kernels knew better.
    const std::string older = "in_intensity_both";
    const bool isHid = textOf(folder + "/name") == "als" &&
                       exists(std::string(folder).append("/").append(older).append("_raw"));
    return isHid && hasIioScale(folder, older) ? older : std::string();
}

/** Scales that a sensor can be set to, as it writes them. */
struct Scales {
    std::string file; ///< with the present one
    std::string finest;
    std::string coarsest;
};

/** Throws 2 where there is nothing to choose. */
Scales scalesOf(const std::string &folder, const std::string &channel)
{
    const auto file = iioFile(folder, channel, "_scale");
    const auto available = iioFile(folder, channel, "_scale_available");
    if (!file || !available || !exists(std::string(folder).append("/").append(channel + "_raw")))
        throw Failure{NotSupported, {}};
    std::istringstream text(readText(*available));
    Scales scales{*file, {}, {}};
    double finest = HUGE_VAL;
    double coarsest = 0;
    for (std::string word; text >> word;) {
        const double scale = realIn(*available, word);
        if (scale <= 0)
            throw Failure{UnexpectedContent, *available + " holds a scale of 0 or below"};
        if (scale < finest)
            scales.finest = word;
        if (scale > coarsest)
            scales.coarsest = word;
        finest = std::min(finest, scale);
        coarsest = std::max(coarsest, scale);
    }
    if (!(finest < coarsest))
        throw Failure{NotSupported, {}};
    return scales;
}

} // namespace

LightSource::Channel LightSource::find()
{
    const auto wanted = Machine::present()->text("lightSensor", "device");
    for (const auto &folder : iioDevices()) {
        if (!wanted.empty() && !isIioDevice(folder, wanted))
            continue;
        auto channel = luxChannel(folder);
        if (channel.empty())
            continue;
        wasThere = true;
        return {folder, std::move(channel)};
    }
    throw Failure{wasThere || !wanted.empty() ? NotAvailable : NotSupported, {}};
}

void LightSource::require()
{
    find();
}

std::string LightSource::name()
{
    const auto channel = find();
    return textOf(channel.folder + "/name").value_or("");
}

double LightSource::lux()
{
    const auto channel = find();
    const double lux = readIio(channel.folder, channel.name);
    if (lux < 0)
        throw Failure{UnexpectedContent, channel.folder + " tells of an illuminance below 0 lux"};
    const auto machine = Machine::present();
    const auto &factor = machine->part("lightSensor", "factor");
    return factor.is_number() ? lux * factor.get<double>() : lux;
}

std::int32_t LightSource::range()
{
    const auto channel = find();
    const auto scales = scalesOf(channel.folder, channel.name);
    constexpr double sameScale = 1.001; // drivers round what they write
    const double present = readSlowReal(scales.file);
    return present <= realIn(scales.file, scales.finest) * sameScale ? LIGHT_RANGE_STANDARD
                                                                     : LIGHT_RANGE_EXTENDED;
}

void LightSource::setRange(std::int32_t range)
{
    const auto channel = find();
    const auto scales = scalesOf(channel.folder, channel.name);
    if (range != LIGHT_RANGE_STANDARD && range != LIGHT_RANGE_EXTENDED)
        throw Failure{ValueOutOfRange, {}};
    writeText(
        scales.file, range == LIGHT_RANGE_STANDARD ? scales.finest : scales.coarsest, rulesRemedy);
}

} // namespace linuxunit
