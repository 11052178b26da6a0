#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace linuxunit {

/**
 * The machine's battery, as the kernel's power supplies tell it: the one that the configuration
 * names, or the first that isn't that of a mouse or the like. Every call looks at what is there
 * now. Without a battery all but isAvailable() throw 2, or 18 when there was one or its slot is
 * empty. One thread at a time.
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
    /** A text of the battery: "serial_number", "model_name". */
    std::string text(const char *name);
    /** Name below /sys/class/power_supply. */
    std::string name();

private:
    std::optional<std::string> find();
    std::string folder();
    std::string fileOf(const char *name);

    bool wasThere = false;
};

} // namespace linuxunit
