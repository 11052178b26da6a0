#pragma once

#include "frame/VornAux2.h"

#include <chrono>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace linuxunit {

/** A temperature that the kernel measures. */
struct Temperature {
    std::string file;  ///< in thousandths of a degree C
    std::string chip;  ///< name of the hwmon chip, or type of the thermal zone
    std::string input; ///< "temp1"; "temp" for a zone
    std::string label; ///< what the chip calls it; may be empty
    ProcessorSensorKind kind;
};

/** All temperatures of chips and zones, by kind, chip and input, so that they stand alike after
 * each start; without those of batteries, and none twice. */
std::vector<Temperature> findTemperatures();

/** A voltage that the kernel measures. */
struct Voltage {
    std::string folder;
    std::string chip;  ///< name of the hwmon chip or IIO device
    std::string input; ///< "in0", "in_voltage3"
    std::string label; ///< may be empty
    bool isIio;
};

/** All voltages of chips and IIO devices whose unit is known. */
std::vector<Voltage> findVoltages();

/** Degrees C; throws for what no sensor measures. */
std::int16_t celsiusIn(const std::string &file, double thousandths);

/** Temperatures as the contract asks for them. One thread at a time. */
class Thermometers
{
public:
    /** Of the sensor that the section `temperatures` names "supervisor" or "board". Without a name
     *  the board's is the first of its kind, and there is no supervisor: 2. */
    std::int16_t supervisor();
    std::int16_t board();

    struct Reading {
        std::int16_t celsius;
        ProcessorSensorKind kind;
    };
    /** Sensor number index. The walk over them begins with 0, and has those that can be read then:
     *  it would end at one that can't. Behind the last one it throws NoSuchSensor; 2 if there is
     *  none at all. */
    Reading processor(std::uint8_t index);

private:
    struct Seen {
        Temperature sensor;
        std::int16_t celsius;
    };

    std::int16_t named(const char *which);
    void look();

    std::vector<Seen> seen;
    std::chrono::steady_clock::time_point lookedAt;
};

/** Volts of a channel, as the section `adc` maps it; 2 for one that it doesn't map. */
double railVoltage(std::uint32_t channel);

} // namespace linuxunit
