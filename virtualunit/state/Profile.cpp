#include "virtualunit/state/Profile.h"

#include "virtualunit/state/Assignment.h"
#include "virtualunit/state/codes.h"
#include "virtualunit/state/life.h"
#include "virtualunit/state/operationNames.h"
#include "virtualunit/system/system.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>
#include <sstream>

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
    std::ifstream file(system::pathOf(nameOrPath), std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) {
        std::string names;
        for (const auto &name : profileNames())
            names += (names.empty() ? "" : ", ") + name;
        throw Failure{ValueOutOfRange,
            "\"" + nameOrPath +
                "\" is neither a readable profile file nor one of the shipped profiles: " + names +
                "."};
    }
    return text.str();
}

std::uint32_t count(const Json &json)
{
    const auto number = json.get<std::int64_t>();
    if (number < 0 || number > UINT32_MAX)
        throw malformed(json.dump() + " is out of range.");
    return static_cast<std::uint32_t>(number);
}

Fault readFault(const Json &json)
{
    Fault fault;
    if (json.is_object()) {
        fault.code = json.at("code").get<std::int32_t>();
        fault.times = json.contains("times") ? count(json["times"]) : 0;
        fault.after = json.contains("after") ? count(json["after"]) : 0;
    } else {
        fault.code = json.get<std::int32_t>();
    }
    return fault;
}

void readProfile(const Json &json, Snapshot &unit)
{
    for (const auto &[section, entries] : json.items()) {
        if (section == "description")
            continue;
        if (section == "values") {
            for (const auto &[name, value] : entries.items())
                assign(unit, name, value.is_string() ? value.get<std::string>() : value.dump());
        } else if (section == "faults") {
            for (const auto &[operation, fault] : entries.items())
                unit.faults[checkedOperation(operation)] = readFault(fault);
        } else if (section == "delays") {
            for (const auto &[operation, milliseconds] : entries.items())
                unit.delays[checkedOperation(operation)] = count(milliseconds);
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
    auto unit = freshSnapshot(epoch);
    const auto source = profileSource(nameOrPath);
    try {
        const auto json = Json::parse(source);
        if (!json.is_object())
            throw malformed("it isn't one JSON object.");
        readProfile(json, unit);
    } catch (const Json::exception &exception) {
        throw malformed(exception.what());
    }
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
