#pragma once

#include <cstdint>
#include <string>
#include <vector>

#ifndef VIRTUALUNIT_API
#    define VIRTUALUNIT_API ///< what exports a function; set by the build of the library alone
#endif

/**
 * Control of the virtual unit behind our own libVornAux2: what a bench engineer does to a real unit
 * with screwdriver, heat gun and fault injector. For vornunit and for tests; the program itself
 * knows only frame/VornAux2.h.
 *
 * Texts are UTF-8 here; those of the device are Latin-1, so they hold no other characters.
 * Each function may be called from any thread. Functions that can fail return an empty text on
 * success, else one English sentence that says what is wrong.
 */
namespace virtualunit {

using Error = std::string;

/** One named value of the unit, such as "Backlight.intensity". */
struct Value {
    std::string name;        ///< "Family.value"
    std::string value;       ///< as set() takes it
    std::string range;       ///< what set() takes, with the unit of measure, for people
    std::string description; ///< one short phrase
};

/** Makes this process use that state file (":memory:" for one of its own) from now on. Without
 *  this call, or with an empty name, it is the file that VORN_UNIT names, else the one in the
 *  user's data directory. Open handles go on working and act on the new file. A new file becomes a
 *  unit of the profile "full". */
VIRTUALUNIT_API Error open(const std::string &file);

/** Replaces the whole state, faults and delays included, by that profile: a name of a profile that
 *  is shipped, or the path of a profile file. */
VIRTUALUNIT_API Error loadProfile(const std::string &nameOrPath);
/** The same from the text of a profile file. */
VIRTUALUNIT_API Error loadProfileText(const std::string &text);
/** Names of the shipped profiles. */
VIRTUALUNIT_API std::vector<std::string> profiles();
/** The present unit as a profile file. */
VIRTUALUNIT_API Error profileText(std::string &text);

/** All values by name. */
VIRTUALUNIT_API Error list(std::vector<Value> &values);
VIRTUALUNIT_API Error get(const std::string &name, std::string &value);
/** Refuses unknown names and values out of range, and changes nothing then. */
VIRTUALUNIT_API Error set(const std::string &name, const std::string &value);

/** From the call after the next `after` calls on, `times` calls (0: all) of that operation, named
 *  as in the contract ("Buzzer_getVolume"), return the code and do nothing else. Code 0 takes the
 *  operation's fault away. */
VIRTUALUNIT_API Error setFault(const std::string &operation, std::int32_t code,
    std::uint32_t times = 0, std::uint32_t after = 0);
VIRTUALUNIT_API Error clearFaults();
/** Each call of that operation takes so much longer; 0 takes the delay away. */
VIRTUALUNIT_API Error setDelay(const std::string &operation, std::uint32_t milliseconds);

/** What is set to go wrong with one operation. */
struct Disturbance {
    std::string operation;
    std::int32_t code = 0;   ///< of its fault as setFault() takes it; 0 without
    std::uint32_t times = 0; ///< the same
    std::uint32_t after = 0; ///< the same
    std::int64_t seen = 0;   ///< calls that the fault has counted; it counts only if it has to
    std::uint32_t delay = 0; ///< milliseconds
};
/** Faults and delays by operation; those that have passed are still among them. */
VIRTUALUNIT_API Error disturbances(std::vector<Disturbance> &all);

/** A short message that the modem of the unit has sent. */
struct ShortMessage {
    std::int64_t time = 0; ///< when, by the unit's clock, milliseconds since 1970
    std::string number;
    std::string text; ///< bytes as they came over the line
};
/** Keeps a message as sent now. */
VIRTUALUNIT_API Error addShortMessage(const std::string &number, const std::string &text);
/** All that were sent, the oldest first. */
VIRTUALUNIT_API Error shortMessages(std::vector<ShortMessage> &messages);

/** All operations of the contract that return a code, by name, in the header's order. */
VIRTUALUNIT_API std::vector<std::string> operations();

/** The unit's clock stands still at that time (milliseconds since 1970) until moved. */
VIRTUALUNIT_API Error setClock(std::int64_t milliseconds);
VIRTUALUNIT_API Error advanceClock(std::int64_t milliseconds);
/** The unit's clock follows the machine's again. */
VIRTUALUNIT_API Error releaseClock();

/** One call on the library as it happened. */
struct Call {
    unsigned thread = 0;   ///< 1 for the first thread that called, 2 for the next new one, ...
    std::string operation; ///< "Buzzer_getVolume"
    unsigned handle = 0;   ///< 1 for the family's first handle, ...; 0 if the operation takes none
    std::string arguments; ///< in arguments, "1, 250"; texts in double quotes
    std::string
        result;       ///< the code; "" for _release; "#n" for _create; the text for text operations
    std::string outs; ///< out values on success, "25"; "" without

    /** "T1 Buzzer_getVolume(#1) = 0 [25]", "T1 Buzzer_setVolume(#1, 30) = 0",
     *  "T1 Buzzer_create() = #1", "T1 Buzzer_release(#1)". The lines of VORN_JOURNAL's file. */
    VIRTUALUNIT_API std::string text() const;
};

/** Records this process's calls in memory from now on, emptied first. */
VIRTUALUNIT_API void startJournal();
/** What was recorded since, and empties it; recording goes on. */
VIRTUALUNIT_API std::vector<Call> takeJournal();
VIRTUALUNIT_API void stopJournal();

} // namespace virtualunit
