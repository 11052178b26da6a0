#include "linuxunit/devices/LightSource.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/kernel/iio.h"
#include "linuxunit/machine/Machine.h"

#include <nlohmann/json.hpp>

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

} // namespace linuxunit
