#pragma once

#include "linuxunit/bus/Bus.h"

#include <cstdint>
#include <optional>
#include <string>

namespace linuxunit {

/**
 * The machine's battery: the one that the configuration names, or the first of the kernel's power
 * supplies that isn't that of a mouse or the like; else the first one that UPower knows, a UPS say.
 * What the kernel doesn't tell of its battery UPower is asked for. Every call looks at what is
 * there now. Without a battery all but isAvailable() throw 2, or 18 when there was one or its slot
 * is empty. One thread at a time.
 */
class Accumulator
{
public:
    bool isAvailable();
    std::uint8_t percent();
    std::int32_t chargingStatus(); ///< BatteryChargingStatus
    std::int32_t powerSource();    ///< BatteryPowerSource
    std::int16_t celsius();
    std::int32_t errorStatus(); ///< BatteryErrorStatus
    std::string serial();
    std::string model();
    /** Name below /sys/class/power_supply, or the last part of what UPower calls its NativePath. */
    std::string name();

private:
    std::optional<std::string> find();
    std::string folder(Deadline until);
    std::string fileOf(const char *name, Deadline until);
    nlohmann::json known(Deadline until);
    std::string text(const char *file, const char *property);

    bool wasThere = false;
};

} // namespace linuxunit
