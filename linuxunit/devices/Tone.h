#pragma once

#include <cstdint>
#include <string>

namespace linuxunit {

/**
 * The kernel's tone device, an input device that takes SND_TONE: the one that the configuration
 * names, or the first. It has no volume. The frequency of the next tone is kept across runs.
 * Without a device it throws 2, or 18 when there was one. One thread at a time.
 */
class Tone
{
public:
    std::uint16_t frequency();
    /** 700 to 10000 Hz; while it sounds the tone changes at once. */
    void setFrequency(std::uint16_t hertz);
    /** What the kernel says, whoever sounds it. */
    bool isSounding();
    void sound(bool on);

    /** Name of the input device, "PC Speaker". */
    std::string name();

private:
    struct Device {
        std::string name;
        std::string node; ///< "/dev/input/event4"
    };

    Device find();

    bool wasThere = false;
};

} // namespace linuxunit
