#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace linuxunit {

/**
 * The front LED, which the section `frontLed` of the configuration names: a multicolour LED, or up
 * to three plain ones. Without the section it throws 2, without the LED 18. One thread at a time.
 *
 * The colour is what the LED shows, brightness of each component scaled to 0 to 15; one that blinks
 * or is off keeps its colour in the settings. Blinking is the kernel's timer trigger, where the LED
 * has that; else only a duty cycle of 0 and of 100 % can be set, and the others are refused with 2.
 */
class FrontLed
{
public:
    using Color = std::array<std::uint8_t, 3>; ///< red, green, blue

    Color color();
    void setColor(const Color &color);
    /** Numbers of LedColor; 18 for a colour that is none of them. */
    std::int32_t standardColor();
    void setStandardColor(std::int32_t number);

    struct Signal {
        double hertz;
        std::uint8_t dutyCycle; ///< percent
    };
    Signal signal();
    void setSignal(const Signal &signal);
    void setOff();

private:
    struct Lamp {
        std::string name;                 ///< below /sys/class/leds
        std::vector<unsigned> components; ///< of the colour, in the order of the LED
    };

    std::vector<Lamp> find() const;
    static void show(const std::vector<Lamp> &lamps, const Color &color);
    static void blink(const std::vector<Lamp> &lamps, const Signal &signal);
};

} // namespace linuxunit
