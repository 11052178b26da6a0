#pragma once

#include <cstdint>
#include <string>

namespace linuxunit {

/**
 * The display's backlight: the one that the configuration names, or the best of those below
 * /sys/class/backlight. Every call looks at what is there now; without a backlight it throws 2, or
 * 18 when there was one. One thread at a time.
 */
class Panel
{
public:
    /** 0 to 255 of what the driver takes. What was set last is what is read, however coarse the
     *  driver's own steps are, as long as nobody else moves them. */
    std::uint8_t intensity();
    void setIntensity(std::uint8_t intensity);

    bool isLit();
    void setLit(bool lit);
    /** False if the driver can't read the level back from the hardware. */
    bool isSound();

    /** Name below /sys/class/backlight. */
    std::string name();

private:
    std::string folder();
    std::int64_t highest(const std::string &folder) const;

    std::string last; ///< the device's name when there was one
};

} // namespace linuxunit
