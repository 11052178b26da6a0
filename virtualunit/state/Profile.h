#pragma once

#include "virtualunit/state/Snapshot.h"

/** Profile files: JSON with what differs from the table of properties, and faults and delays. */
namespace virtualunit {

struct EmbeddedProfile {
    const char *name;
    const char *text;
};

/** A shipped profile by name, or the file at that path, as a unit made at that time. Throws a
 *  Failure that tells what is wrong with it. */
Snapshot profileSnapshot(const std::string &nameOrPath, std::int64_t epoch);

/** The same from the text of a profile file. */
Snapshot readProfile(const std::string &text, std::int64_t epoch);

/** The unit at that time as a profile file. */
std::string writeProfile(const Snapshot &unit, std::int64_t now);

std::vector<std::string> profileNames();

} // namespace virtualunit
