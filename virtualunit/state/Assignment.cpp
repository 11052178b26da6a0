#include "virtualunit/state/Assignment.h"

#include "virtualunit/state/codes.h"
#include "virtualunit/state/latin1.h"

namespace virtualunit {

const std::string &checkedString(const std::string &text)
{
    if (toLatin1(text).size() > longestString || text.find('\0') != std::string::npos)
        throw Failure{ValueOutOfRange,
            "A stored string has at most " + std::to_string(longestString) + " characters."};
    return text;
}

Assignment readAssignment(const std::string &name, const std::string &value)
{
    constexpr std::string_view live = "live";
    Assignment result;
    if (name.starts_with(stringPrefix) && name.size() > stringPrefix.size()) {
        result.string = checkedString(name.substr(stringPrefix.size()));
        result.text = checkedString(value);
        return result;
    }
    const auto index = findProperty(name);
    if (index == propertyCount)
        throw Failure{ValueOutOfRange, "There is no value \"" + name + "\"."};
    result.key = Key(index);
    const auto &property = properties[index];
    if (property.isText()) {
        result.text = checkedText(property, value);
    } else if (property.living != Living::No && value == live) {
        result.live = true;
    } else if (property.living != Living::No && value.starts_with("live ")) {
        result.live = result.from = true;
        auto start = property; // counters live with fractions of a minute
        start.kind = Kind::Real;
        result.number = parseNumber(start, std::string_view(value).substr(live.size() + 1));
    } else {
        result.number = parseNumber(property, value);
    }
    return result;
}

void assign(Snapshot &unit, const std::string &name, const std::string &value)
{
    const auto wanted = readAssignment(name, value);
    if (!wanted.string.empty()) {
        unit.strings[wanted.string] = wanted.text;
        return;
    }
    const auto &property = wanted.key.property();
    auto &cell = unit.cells[wanted.key.index];
    cell.text = wanted.text;
    cell.number = wanted.live && !wanted.from ? property.number : wanted.number;
    cell.pinned = !wanted.live && property.canBePinned();
}

} // namespace virtualunit
