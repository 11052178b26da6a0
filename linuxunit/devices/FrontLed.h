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
 * The colour is the one that was last set here, else what the LED shows, brightness of each
 * component scaled to 0 to 15. A duty cycle of 0 % is off, and keeps colour and frequency. Blinking
 * is the kernel's: its timer trigger, or its pattern trigger, which trains of pulses take. An LED
 * without them is refused with 2 whatever it can't do: it can be on and off.
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

    /** Pulses of the signal, and the dark time behind them; one of them 0 is a signal without end.
     *  2 for an LED without the pattern trigger. */
    struct Train {
        std::uint8_t pulses;
        std::uint8_t idleTime; ///< hundreds of milliseconds
    };
    Train train();
    /** 5 for a train that is longer than the kernel takes. */
    void setTrain(const Train &train);

private:
    struct Lamp {
        std::string name;                 ///< below /sys/class/leds
        std::vector<unsigned> components; ///< of the colour, in the order of the LED
        bool isMulticolor;                ///< it may be so with a single component, too
    };

    std::vector<Lamp> find() const;
    static bool canTrain(const std::vector<Lamp> &lamps);
    static void set(const std::vector<Lamp> &lamps, const Color &color, const Signal &signal,
        const Train &train);
    static void show(const std::vector<Lamp> &lamps, const Color &color);
    static void blink(const std::vector<Lamp> &lamps, const Color &color, const Signal &signal,
        const Train &train);
};

} // namespace linuxunit
