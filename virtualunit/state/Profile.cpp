#include "virtualunit/state/Profile.h"

#include "platform/system.h"
#include "virtualunit/state/Assignment.h"
#include "virtualunit/state/codes.h"
#include "virtualunit/state/life.h"
#include "virtualunit/state/operationNames.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

namespace virtualunit {

extern const EmbeddedProfile embeddedProfiles[]; ///< generated; ends with a null name

namespace {

using Json = nlohmann::ordered_json;

Failure malformed(const std::string &what)
{
    return {ValueOutOfRange, "The profile can't be read: " + what};
}

std::string profileSource(const std::string &nameOrPath)
{
    for (auto profile = embeddedProfiles; profile->name; ++profile) {
        if (nameOrPath == profile->name)
            return profile->text;
    }
    const auto path = platform::pathOf(nameOrPath);
    std::error_code error;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, error)) {
        std::string names;
        for (const auto &name : profileNames())
            names += (names.empty() ? "" : ", ") + name;
        throw Failure{ValueOutOfRange,
            "\"" + nameOrPath +
                "\" is neither a readable profile file nor one of the shipped profiles: " + names +
                "."};
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

Json parsed(const std::string &source)
{
    try {
        return Json::parse(source);
    } catch (const Json::parse_error &error) {
        const auto good = source.substr(0, error.byte > 0 ? error.byte - 1 : 0);
        const auto line = 1 + std::count(good.begin(), good.end(), '\n');
        throw malformed("it is no JSON from line " + std::to_string(line) + " on.");
    }
}

template <typename T>
T wholeNumber(const Json &json)
{
    constexpr std::int64_t lowest = std::numeric_limits<T>::min();
    constexpr std::int64_t highest = std::numeric_limits<T>::max();
    const bool huge = json.is_number_unsigned() && json.get<std::uint64_t>() > INT64_MAX;
    const auto number = json.is_number_integer() && !huge ? json.get<std::int64_t>() : highest + 1;
    if (number >= lowest && number <= highest)
        return static_cast<T>(number);
    throw malformed(json.dump() + " is no whole number from " + std::to_string(lowest) + " to " +
                    std::to_string(highest) + ".");
}

Failure strangeFault(const std::string &operation, const std::string &what)
{
    return malformed("the fault of " + operation + " " + what);
}

Fault readFault(const std::string &operation, const Json &json)
{
    if (!json.is_object())
        return {wholeNumber<DeviceCode>(json)};
    Fault fault;
    if (!json.contains("code"))
        throw strangeFault(operation, "has no code.");
    for (const auto &[name, number] : json.items()) {
        if (name == "code")
            fault.code = wholeNumber<DeviceCode>(number);
        else if (name == "times")
            fault.times = wholeNumber<std::uint32_t>(number);
        else if (name == "after")
            fault.after = wholeNumber<std::uint32_t>(number);
        else
            throw strangeFault(operation, "knows no \"" + name + "\".");
    }
    return fault;
}

void readProfile(const Json &json, Snapshot &unit)
{
    for (const auto &[section, entries] : json.items()) {
        if (section == "description")
            continue;
        if (!entries.is_object())
            throw malformed("the section \"" + section + "\" isn't one JSON object.");
        if (section == "values") {
            for (const auto &[name, value] : entries.items())
                assign(unit, name, value.is_string() ? value.get<std::string>() : value.dump());
        } else if (section == "faults") {
            for (const auto &[operation, fault] : entries.items())
                unit.faults[checkedOperation(operation)] = readFault(operation, fault);
        } else if (section == "delays") {
            for (const auto &[operation, milliseconds] : entries.items())
                unit.delays[checkedOperation(operation)] = wholeNumber<std::uint32_t>(milliseconds);
        } else {
            throw malformed("there is no section \"" + section + "\".");
        }
    }
}

Json writeValue(const Property &property, const Cell &cell, double number)
{
    if (property.isText())
        return cell.text;
    if (property.canBePinned() && !cell.pinned)
        return "live " + formatReal(std::round(number * 100) / 100);
    return Json::parse(formatNumber(property, number));
}

Json writeFault(const Fault &fault)
{
    if (fault.times == 0 && fault.after == 0)
        return fault.code;
    Json json{{"code", fault.code}};
    if (fault.times != 0)
        json["times"] = fault.times;
    if (fault.after != 0)
        json["after"] = fault.after;
    return json;
}

} // namespace

std::vector<std::string> profileNames()
{
    std::vector<std::string> names;
    for (auto profile = embeddedProfiles; profile->name; ++profile)
        names.emplace_back(profile->name);
    return names;
}

Snapshot profileSnapshot(const std::string &nameOrPath, std::int64_t epoch)
{
    return readProfile(profileSource(nameOrPath), epoch);
}

Snapshot readProfile(const std::string &text, std::int64_t epoch)
{
    auto unit = freshSnapshot(epoch);
    const auto json = parsed(text);
    if (!json.is_object())
        throw malformed("it isn't one JSON object.");
    readProfile(json, unit);
    return unit;
}

std::string writeProfile(const Snapshot &unit, std::int64_t now)
{
    Json values = Json::object();
    for (std::size_t index = 0; index < propertyCount; ++index) {
        const auto &property = properties[index];
        const auto &cell = unit.cells[index];
        const double number = life::accumulates(property) && !cell.pinned
                                  ? life::settledAt(unit, Key(index), now)
                                  : cell.number;
        if (number != property.number || cell.text != property.text || cell.pinned)
            values[std::string(property.name)] = writeValue(property, cell, number);
    }
    for (const auto &[key, value] : unit.strings)
        values["Settings." + key] = value;

    Json json{{"description", "a unit as it was found"}, {"values", values}};
    for (const auto &[operation, fault] : unit.faults)
        json["faults"][operation] = writeFault(fault);
    for (const auto &[operation, milliseconds] : unit.delays)
        json["delays"][operation] = milliseconds;
    return json.dump(4) + "\n";
}

} // namespace virtualunit
