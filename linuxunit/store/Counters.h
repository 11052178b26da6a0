#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;

namespace linuxunit {

/** What has been counted since counting began, in seconds. */
struct Counted {
    double running = 0;
    double suspended = 0;
    double at40To60 = 0; ///< degrees C, while running
    double at60To70 = 0;
    double at70To80 = 0;
    double above80 = 0;
    std::int64_t powerCycles = 0;
    std::optional<double> coldest; ///< degrees C; nothing if it was never measured
    std::optional<double> hottest;
};

/** The same of the battery: as long as there was one. */
struct BatteryCounted {
    double onMainPower = 0;
    double onBattery = 0;
    double belowMinus20 = 0; ///< degrees C of the battery, where it measures them
    double atMinus20To0 = 0;
    double at0To40 = 0;
    double at40To60 = 0;
    double at60To70 = 0;
    double at70To80 = 0;
    double above80 = 0;
    std::optional<double> coldest;
    std::optional<double> hottest;
};

/** As the contract has them. */
std::uint32_t wholeMinutes(double seconds);
std::int16_t wholeDegrees(double celsius);

/** How the battery is. */
struct BatteryMoment {
    std::optional<bool> isFeeding; ///< the machine; nothing if nobody knows
    std::optional<double> celsius;
};

/** How things stand now. */
struct Moment {
    std::string boot;              ///< what the kernel calls this start of the computer
    double running = 0;            ///< seconds since then
    double suspended = 0;          ///< likewise
    std::optional<double> celsius; ///< nothing if it can't be measured
    std::optional<BatteryMoment> battery = std::nullopt; ///< nothing without one
};

/**
 * The counters of `vornaux-counter`, in an SQLite file below /var/lib/vornaux that the library
 * reads. A power cut loses what came after the last add(), never what came before. Failures are
 * StoreFailed with the file and the reason. One thread at a time; several processes may read.
 */
class Counters
{
public:
    static std::string path();
    /** Throws 2 if nobody ever counted. */
    static Counted read();
    /** Throws 2 if no battery was ever there. */
    static BatteryCounted readBattery();

    Counters(); ///< to be added to; the file is made if there is none
    ~Counters();
    Counters(const Counters &) = delete;
    Counters &operator=(const Counters &) = delete;

    /** Counts on to that moment: whatever this start has that wasn't counted yet. The time counts
     *  for the temperature's class only where it is short enough to be sure of that. */
    void add(const Moment &moment);

private:
    struct Closer {
        void operator()(sqlite3 *open) const;
    };

    std::unique_ptr<sqlite3, Closer> database;
};

} // namespace linuxunit
