#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace trace {

/** An operation that vorntrace lets fail, without asking the library. */
struct Fault {
    std::string operation;
    std::int32_t code = 0;
    std::uint32_t after = 0; ///< only behind so many good calls
    std::uint32_t times = 0; ///< for so many calls; 0 is for all
};

/** An operation whose calls take longer. */
struct Delay {
    std::string operation;
    std::uint32_t milliseconds = 0;
};

/** "Buzzer_getVolume=13,after=1,times=2", the last two in any order or not at all. Throws
 *  std::invalid_argument with a sentence. */
Fault parseFault(const std::string &text);
/** "Buzzer_getVolume=300". Throws std::invalid_argument with a sentence. */
Delay parseDelay(const std::string &text);

/** What vorntrace tells its library in the program that it starts, through the environment. */
struct Settings {
    std::string replayed;   ///< the trace that answers; empty while the real library does
    std::string output;     ///< the file to which lines are appended; empty is standard error
    std::string library;    ///< the real library's file; empty is the one that the program loads
    std::string tally;      ///< the file of the Tally; empty without
    bool times = false;     ///< write, or keep to, the times of calls
    std::int64_t start = 0; ///< when the program was started, steady clock, nanoseconds
    std::vector<std::string> faults; ///< as parseFault() takes them
    std::vector<std::string> delays; ///< as parseDelay() takes them

    /** The variables and their values, UTF-8. An empty value takes its variable away. */
    std::vector<std::pair<std::string, std::string>> variables() const;
    static Settings fromEnvironment();
};

} // namespace trace
