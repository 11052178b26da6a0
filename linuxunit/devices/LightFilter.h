#pragma once

#include <cstdint>
#include <deque>

namespace linuxunit {

/** How readings of the light sensor are smoothed. */
struct FilterSettings {
    std::uint32_t averageWindowSize = 4; ///< samples, 1 to 1000
    std::uint32_t rejectWindowSize = 8;  ///< samples, 0 to 1000; 0 rejects nothing
    std::uint32_t rejectDeltaLux = 80;
    std::int32_t samplingMode = 2; ///< SamplingMode; IIO sensors choose their range themselves
};

inline constexpr std::uint32_t longestWindow = 1000;

/** 5 for settings that can't be. */
void checkFilter(const FilterSettings &settings);

/**
 * A moving average that passes over what flashes by: a sample that lies further from the average
 * than rejectDeltaLux is left out, unless rejectWindowSize of them came in a row, which is a change
 * of the light.
 */
class LightFilter
{
public:
    explicit LightFilter(const FilterSettings &settings);

    void add(double lux);
    /** Lux; 0 before the first sample. */
    double average() const;
    bool isEmpty() const;

private:
    FilterSettings settings;
    std::deque<double> samples;
    std::uint32_t rejected = 0; ///< in a row
};

} // namespace linuxunit
