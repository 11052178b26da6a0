#include "commandline/commandline.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/Accumulator.h"
#include "linuxunit/devices/LightSource.h"
#include "linuxunit/devices/Panel.h"
#include "linuxunit/devices/Sensors.h"
#include "linuxunit/devices/Tone.h"
#include "linuxunit/devices/identity.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/kernel/regulators.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <iostream>
#include <map>

namespace {

using namespace linuxunit;
using Json = nlohmann::ordered_json;

/** What was found, for the file, and what people are told beside it. */
struct Found {
    Json file = Json::object();
    std::vector<std::string> notes;
};

/** What stands in the way, in words. */
std::string reasonOf(const Failure &failure)
{
    return utf8(errorText(codeOf(failure)));
}

/** A section that names one device; false for one that this machine hasn't got. */
void addDevice(Found &found, const char *section, const std::function<std::string()> &nameOf)
{
    try {
        found.file[section] = {{"device", nameOf()}};
    } catch (const Failure &failure) {
        found.file[section] = false;
        found.notes.push_back(std::string(section) + ": " + reasonOf(failure));
    }
}

/** What a rail is called on boards, by channel of the contract. */
struct RailName {
    const char *label;
    int channel;
};
constexpr RailName railNames[] = {{"24V", 0}, {"+24V", 0}, {"12V", 2}, {"+12V", 2}, {"5V", 4},
    {"+5V", 4}, {"3.3V", 5}, {"+3.3V", 5}, {"3V3", 5}, {"5VSB", 7}, {"5VSTB", 7}, {"1.8V", 9},
    {"+1.8V", 9}, {"1V8", 9}, {"1.5V", 10}, {"1.2V", 11}, {"1V2", 11}, {"1.05V", 12}, {"2.5V", 17},
    {"1.1V", 18}, {"3VSB", 21}, {"3V3_STBY", 21}};

/** The rails that labels tell; of all other voltages a note, since only the board's maker knows. */
void addVoltages(Found &found)
{
    Json rails = Json::array();
    for (const auto &voltage : findVoltages()) {
        const auto *const rail = std::find_if(std::begin(railNames), std::end(railNames),
            [&](const RailName &name) { return voltage.label == name.label; });
        if (rail != std::end(railNames)) {
            rails.push_back(
                {{"channel", rail->channel}, {"chip", voltage.chip}, {"input", voltage.input}});
            continue;
        }
        found.notes.push_back("adc: which rail is " + voltage.chip + " " + voltage.input +
                              (voltage.label.empty() ? "" : " \"" + voltage.label + "\"") + "?");
    }
    found.file["adc"] = rails.empty() ? Json(false) : Json{{"rails", rails}};
}

void addTemperatures(Found &found)
{
    constexpr const char *kinds[] = {
        "cpu", "box", "environment", "board", "backplane", "chipsets", "video", "other"};
    Json processor = Json::array();
    std::map<std::string, unsigned> alike;
    for (const auto &sensor : findTemperatures()) {
        Json entry{{"chip", sensor.chip}, {"input", sensor.input}, {"kind", kinds[sensor.kind]}};
        if (!sensor.label.empty())
            entry["label"] = sensor.label;
        if (const auto number = alike[sensor.chip + '\n' + sensor.input + '\n' + sensor.label]++)
            entry["number"] = number;
        processor.push_back(entry);
    }
    if (processor.empty())
        found.file["temperatures"] = false;
    else
        found.file["temperatures"] = {{"processor", processor}};
}

/** A question that names what only the integrator can tell apart; none without names. */
void ask(Found &found, const std::string &question, const std::vector<std::string> &names)
{
    std::string list;
    for (const auto &name : names)
        list += (list.empty() ? "" : ", ") + name;
    if (!list.empty())
        found.notes.push_back(question + " " + list);
}

void addLeds(Found &found)
{
    found.file["frontLed"] = false;
    ask(found, "frontLed: is one of these the front LED?", namesIn("/sys/class/leds"));
}

Found probe()
{
    Found found;
    try {
        found.file["name"] = utf8(identity::firmwareText("product_name", "model"));
    } catch (const Failure &failure) {
        found.notes.push_back("name: " + reasonOf(failure));
    }
    addDevice(found, "backlight", [] { return Panel().name(); });
    addDevice(found, "lightSensor", [] { return LightSource().name(); });
    addDevice(found, "buzzer", [] { return Tone().name(); });
    addDevice(found, "battery", [] { return Accumulator().name(); });
    addLeds(found);
    ask(found, "power: what do these regulators switch?", switchableRegulators());
    addVoltages(found);
    addTemperatures(found);
    found.notes.emplace_back(
        "hardware: texts and counts that stand on the machine and nowhere in it "
        "are yours to add");
    return found;
}

void check(const std::string &path)
{
    std::string text;
    try {
        text = readWhole(path, longestMachineFile);
        Machine::parse(text, path);
    } catch (const Failure &failure) {
        throw commandline::Refusal{
            failure.sentence.empty() ? path + " can't be read" : failure.sentence};
    }
    std::cout << path << " describes a machine\n";
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app(
        "Prints a description of this machine for the Linux unit, /etc/vornaux/unit.json, to "
        "be edited; what is missing, and what only you can know, on the standard error "
        "stream.",
        "vornaux-probe");
    app.footer("Exit codes: 0 done, 1 the file is wrong or can't be read, 2 wrong usage.");
    std::string file;
    bool printsSchema = false;
    app.add_option("--check", file, "Holds this file to the schema instead")->type_name("FILE");
    app.add_flag("--schema", printsSchema, "Prints the schema instead");
    app.callback([&] {
        if (printsSchema) {
            std::cout << machineSchema;
        } else if (!file.empty()) {
            check(file);
        } else {
            // What a file says already doesn't matter to what is found.
            ::setenv("VORNAUX_CONFIG", "/dev/null/none", 1);
            const auto found = probe();
            std::cout << found.file.dump(4, ' ', false, Json::error_handler_t::replace) << '\n';
            for (const auto &note : found.notes)
                std::cerr << "vornaux-probe: " << note << '\n';
        }
    });
    return commandline::run(app, argc, argv);
}
