#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace linuxunit {

/** The machine's radios and what receives satellites. Every call looks at what is there now. One
 *  thread at a time. */
class Radios
{
public:
    /** Whether there is any; throws 2 if not. */
    void require() const;

    /** Types are the kernel's: "wwan", "wlan", "bluetooth", "gps". Whether the section `telematics`
     *  tells what switches the radio's power; it is fitted then, be it there or not. */
    static bool hasPowerSwitch(const std::string &type);
    /** A radio is on if it has power and none of its switches blocks it. 2 without either. */
    bool isOn(const std::string &type) const;
    /** WriteFailed for one that a switch on the machine holds off. */
    void switchTo(const std::string &type, bool on) const;

    /** By the line `telematics/antenna`, which is active while the antenna is good; 2 without. */
    bool isAntennaGood() const;
};

/** Nodes where a modem takes commands and where positions come from, "/dev/ttyUSB2" say: of gnss
 *  devices, or as ModemManager tells. Nothing if nobody knows. */
std::optional<std::string> modemPort();
std::optional<std::string> positionPort();

} // namespace linuxunit
