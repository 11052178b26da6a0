#include "virtualunit/tool/lists.h"

#include "commandline/commandline.h"
#include "virtualunit/VirtualUnit.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <thread>

namespace tool {

using commandline::Refusal;
using Json = nlohmann::ordered_json;
using virtualunit::Value;

namespace {

void print(const Json &json)
{
    // Short messages hold whatever came over the line.
    std::cout << json.dump(4, ' ', false, Json::error_handler_t::replace) << '\n';
}

void printNames(const std::vector<std::string> &names, Format format)
{
    if (format == Format::Json)
        return print(Json(names));
    for (const auto &name : names)
        std::cout << name << '\n';
}

std::vector<Value> allValues()
{
    std::vector<Value> values;
    require(virtualunit::list(values));
    return values;
}

std::string valueOf(const std::string &name)
{
    std::string value;
    if (const auto error = virtualunit::get(name, value); !error.empty()) {
        requireValue(name);
        throw Refusal{error};
    }
    return value;
}

[[noreturn]] void refuseFilter(const std::string &what, const std::string &filter)
{
    throw Refusal{"There is no " + what + " with \"" + filter + "\" in its name"};
}

void printTable(const std::vector<Value> &values)
{
    std::size_t nameWidth = 0;
    std::size_t valueWidth = 0;
    for (const auto &value : values) {
        nameWidth = std::max(nameWidth, value.name.size());
        valueWidth = std::max(valueWidth, value.value.size());
    }
    // One long text must not push the explanations of all the others off the screen.
    valueWidth = std::min<std::size_t>(valueWidth, 24);
    const auto padded = [](std::string text, std::size_t width) {
        text.resize(std::max(text.size(), width), ' ');
        return text;
    };
    for (const auto &value : values) {
        std::cout << padded(value.name, nameWidth) << "  " << padded(value.value, valueWidth)
                  << "  " << value.description;
        if (!value.range.empty())
            std::cout << " [" << value.range << ']';
        std::cout << '\n';
    }
}

std::string faultText(const virtualunit::Disturbance &fault)
{
    auto text = "answers " + std::to_string(fault.code);
    if (fault.times != 0)
        text += " to " + std::to_string(fault.times) + (fault.times == 1 ? " call" : " calls");
    if (fault.after != 0)
        text += " after " + std::to_string(fault.after) + " good";
    if (fault.times != 0 || fault.after != 0)
        text += "; calls so far: " + std::to_string(fault.seen);
    return text;
}

/** Control characters as C writes them, so that a message stays on its line. */
void printText(const std::string &text)
{
    for (const char byte : text) {
        if (byte == '\r' || byte == '\n')
            std::cout << (byte == '\r' ? "\\r" : "\\n");
        else if (static_cast<unsigned char>(byte) < ' ')
            std::cout << "\\x" << std::hex << std::setw(2) << std::setfill('0') << int{byte}
                      << std::dec;
        else
            std::cout << byte;
    }
}

} // namespace

void listShortMessages(Format format)
{
    std::vector<virtualunit::ShortMessage> messages;
    require(virtualunit::shortMessages(messages));
    if (format == Format::Json) {
        auto json = Json::array();
        for (const auto &[time, number, text] : messages)
            json.push_back({{"time", time}, {"number", number}, {"text", text}});
        return print(json);
    }
    for (const auto &message : messages) {
        // A state file may hold any number, and Windows knows no years before 1970 or after 3000.
        const auto seconds = std::time_t(message.time / 1000);
        if (const std::tm *utc = std::gmtime(&seconds))
            std::cout << std::put_time(utc, "%Y-%m-%d %H:%M:%S");
        else
            std::cout << message.time;
        std::cout << "  " << message.number << "  ";
        printText(message.text);
        std::cout << '\n';
    }
}

void require(const std::string &error)
{
    if (!error.empty())
        throw Refusal{error};
}

void requireValue(const std::string &name)
{
    std::vector<std::string> names;
    for (const auto &value : allValues())
        names.push_back(value.name);
    if (std::find(names.begin(), names.end(), name) == names.end())
        throw Refusal{commandline::unknown("value", name, names)};
}

void requireOperation(const std::string &operation)
{
    const auto names = virtualunit::operations();
    if (std::find(names.begin(), names.end(), operation) == names.end())
        throw Refusal{commandline::unknown("operation", operation, names)};
}

void listValues(const std::string &filter, Format format)
{
    auto values = allValues();
    std::erase_if(
        values, [&](const Value &value) { return !commandline::matches(value.name, filter); });
    if (values.empty())
        refuseFilter("value", filter);
    if (format == Format::Text)
        return printTable(values);
    auto json = Json::array();
    for (const auto &[name, value, range, description] : values)
        json.push_back(
            {{"name", name}, {"value", value}, {"range", range}, {"description", description}});
    print(json);
}

void printValues(const std::vector<std::string> &names, Format format)
{
    // Nothing is printed unless all of them are there.
    std::vector<std::string> values;
    values.reserve(names.size());
    for (const auto &name : names)
        values.push_back(valueOf(name));
    if (format == Format::Text)
        return printNames(values, format);
    auto json = Json::array();
    for (std::size_t i = 0; i < names.size(); ++i)
        json.push_back({{"name", names[i]}, {"value", values[i]}});
    print(json);
}

void watchValues(const std::vector<std::string> &names)
{
    constexpr std::chrono::milliseconds interval{100};
    std::vector<std::string> shown(names.size());
    for (bool first = true; std::cout; first = false) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            auto value = valueOf(names[i]);
            if (!first && value == shown[i])
                continue;
            std::cout << names[i] << "  " << value << std::endl;
            shown[i] = std::move(value);
        }
        std::this_thread::sleep_for(interval);
    }
}

void listOperations(const std::string &filter, Format format)
{
    auto names = virtualunit::operations();
    std::erase_if(
        names, [&](const std::string &name) { return !commandline::matches(name, filter); });
    if (names.empty())
        refuseFilter("operation", filter);
    printNames(names, format);
}

void listDisturbances(Format format)
{
    std::vector<virtualunit::Disturbance> all;
    require(virtualunit::disturbances(all));
    if (format == Format::Json) {
        auto json = Json::array();
        for (const auto &[operation, code, times, after, seen, delay] : all)
            json.push_back({{"operation", operation}, {"code", code}, {"times", times},
                {"after", after}, {"seen", seen}, {"delay", delay}});
        return print(json);
    }
    for (const auto &disturbance : all) {
        if (disturbance.code != 0)
            std::cout << disturbance.operation << "  " << faultText(disturbance) << '\n';
        if (disturbance.delay != 0)
            std::cout << disturbance.operation << "  takes " << disturbance.delay << " ms longer\n";
    }
}

void listProfiles(Format format)
{
    printNames(virtualunit::profiles(), format);
}

} // namespace tool
