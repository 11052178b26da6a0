#pragma once

#include "virtualunit/state/Snapshot.h"

namespace virtualunit {

/** The prefix of the names under which the strings of the Settings family are listed. */
inline constexpr std::string_view stringPrefix = "Settings.";

/** What "NAME VALUE" asks for, checked. */
struct Assignment {
    Key key{propertyCount};
    std::string string; ///< key of a stored string instead of a property
    std::string text;   ///< for texts
    double number = 0;  ///< for numbers
    bool live = false;  ///< let it live...
    bool from = false;  ///< ...starting from the number
};

/** Takes a name of the table or "Settings." with any key, and a value, "live" or "live NUMBER".
 *  Throws a Failure that says what is wrong. */
Assignment readAssignment(const std::string &name, const std::string &value);

/** For a unit that isn't alive yet. */
void assign(Snapshot &unit, const std::string &name, const std::string &value);

/** The longest key and value of the Settings family. */
inline constexpr std::size_t longestString = 1023;
/** Throws a Failure if it is too long or no Latin-1. */
const std::string &checkedString(const std::string &text);

} // namespace virtualunit
