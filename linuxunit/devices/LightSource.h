#pragma once

#include <cstdint>
#include <string>

namespace linuxunit {

/**
 * The ambient light sensor: an IIO device with illuminance, the one that the configuration names or
 * the first. Every call looks at what is there now; without a sensor it throws 2, or 18 when there
 * was one. One thread at a time.
 */
class LightSource
{
public:
    /** Illuminance in lux. */
    double lux();
    /** LightRange: the finest of the scales that the sensor has is the standard range, all coarser
     *  ones are extended; the coarsest is what is set for it. 2 for a sensor that has one scale. */
    std::int32_t range();
    void setRange(std::int32_t range);
    /** Throws 2 or 18 if there is none. */
    void require();
    /** Name of the IIO device, "als" say. */
    std::string name();

private:
    struct Channel {
        std::string folder;
        std::string name;
    };

    Channel find();

    bool wasThere = false;
};

} // namespace linuxunit
