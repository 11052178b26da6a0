#pragma once

#include "virtualunit/state/propertyTable.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace virtualunit {

/** One stored value. A living one starts from it and moves on, unless it is pinned. */
struct Cell {
    double number = 0;
    std::string text;       ///< UTF-8
    std::int64_t since = 0; ///< when it was stored, unit's clock
    bool pinned = false;
};

/** A fault as setFault() takes it; seen counts the calls that it was asked about. */
struct Fault {
    std::int32_t code = 0;
    std::uint32_t times = 0;
    std::uint32_t after = 0;
    std::int64_t seen = 0;

    bool passed() const { return times != 0 && seen >= std::int64_t(after) + times; }
};

/** The whole unit but for its firmware images and short messages. */
struct Snapshot {
    std::int64_t epoch = 0;            ///< when this unit was made, milliseconds since 1970
    std::optional<std::int64_t> clock; ///< the unit's clock stands there
    std::vector<Cell> cells;           ///< by the index of the property
    std::map<std::string, std::string> strings; ///< of the Settings family
    std::map<std::string, Fault, std::less<>> faults;
    std::map<std::string, std::uint32_t, std::less<>> delays; ///< milliseconds

    const Cell &operator[](Key key) const { return cells[key.index]; }
};

/** A unit as the table of properties makes it. */
Snapshot freshSnapshot(std::int64_t epoch);

} // namespace virtualunit
