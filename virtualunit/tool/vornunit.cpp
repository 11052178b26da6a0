#include "commandline/commandline.h"
#include "devicetools/skeleton.h"
#include "platform/system.h"
#include "virtualunit/VirtualUnit.h"
#include "virtualunit/lines/serve.h"
#include "virtualunit/tool/journal.h"
#include "virtualunit/tool/lists.h"
#include "virtualunit/tool/unitOfTrace.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

namespace {

using platform::environment;
using platform::pathOf;
using tool::Format;
using tool::require;

struct Options {
    std::string unit;
    std::string profile;
    std::string name;
    std::vector<std::string> names;
    std::string filter;
    std::string value;
    std::string operation;
    std::int32_t code = 0;
    std::uint32_t times = 0;
    std::uint32_t after = 0;
    std::uint32_t milliseconds = 0;
    std::string journal;
    std::string folder;
    std::string recording;
    bool clear = false;
    bool follow = false;
    bool json = false;

    Format format() const { return json ? Format::Json : Format::Text; }
};

void addJsonFlag(CLI::App &command, Options &options)
{
    command.add_flag("--json", options.json, "Prints JSON");
}

void printProfile()
{
    std::string text;
    require(virtualunit::profileText(text));
    std::cout << text;
}

void setValue(const std::string &name, const std::string &value)
{
    const auto error = virtualunit::set(name, value);
    // Strings of the Settings family need not be there before.
    if (!error.empty() && !name.starts_with("Settings."))
        tool::requireValue(name);
    require(error);
}

void setFault(const Options &options)
{
    if (options.clear)
        return require(virtualunit::clearFaults());
    tool::requireOperation(options.operation);
    require(virtualunit::setFault(options.operation, options.code, options.times, options.after));
}

void initialise(const Options &options)
{
    if (!tool::isTrace(options.profile))
        return require(virtualunit::loadProfile(options.profile));
    std::string warning;
    const auto profile = tool::profileOfTrace(options.profile, warning);
    if (!warning.empty())
        std::cerr << "vornunit: " << warning << '\n';
    require(virtualunit::open(options.unit));
    require(virtualunit::loadProfileText(profile));
}

void addProfileCommands(CLI::App &app, Options &options)
{
    auto *init = app.add_subcommand(
        "init", "Makes the unit one of that profile, factory-new, or as a trace last saw it");
    init->add_option("PROFILE", options.profile,
            "A name that \"profiles\" lists, a profile file, or a trace or journal")
        ->required();
    init->final_callback([&] { initialise(options); });

    app.add_subcommand("profile", "Prints the present unit as a profile file")
        ->final_callback(printProfile);

    auto *profiles = app.add_subcommand("profiles", "Lists the profiles that come with the unit");
    addJsonFlag(*profiles, options);
    profiles->final_callback([&] { tool::listProfiles(options.format()); });
}

void addValueCommands(CLI::App &app, Options &options)
{
    auto *list = app.add_subcommand("list", "Lists the values with their meaning and range");
    list->add_option("FILTER", options.filter, "Only names with this in them, whatever the case");
    addJsonFlag(*list, options);
    list->final_callback([&] { tool::listValues(options.filter, options.format()); });

    auto *get = app.add_subcommand("get", "Prints values, each on its line");
    get->add_option("NAME", options.names, "The value's name, such as Backlight.intensity")
        ->required();
    addJsonFlag(*get, options);
    get->final_callback([&] { tool::printValues(options.names, options.format()); });

    auto *set = app.add_subcommand("set", "Changes one value");
    set->add_option("NAME", options.name, "The value's name, such as Backlight.intensity")
        ->required();
    set->add_option("VALUE", options.value, "The new value; behind -- it may begin with a dash")
        ->required();
    set->final_callback([&] { setValue(options.name, options.value); });

    auto *watch =
        app.add_subcommand("watch", "Prints values and all their changes until interrupted");
    watch->add_option("NAME", options.names, "The value's name, such as Backlight.intensity")
        ->required();
    watch->final_callback([&] { tool::watchValues(options.names); });
}

void addDisturbanceCommands(CLI::App &app, Options &options)
{
    auto *operations = app.add_subcommand("operations", "Lists the operations of the contract");
    operations->add_option(
        "FILTER", options.filter, "Only names with this in them, whatever the case");
    addJsonFlag(*operations, options);
    operations->final_callback([&] { tool::listOperations(options.filter, options.format()); });

    auto *fault = app.add_subcommand("fault", "Lets an operation fail with a code");
    auto *clear =
        fault->add_flag("--clear", options.clear, "Takes all faults and nothing else away");
    auto *operation = fault->add_option(
        "OPERATION", options.operation, "An operation of the contract, such as Buzzer_getVolume");
    auto *code = fault->add_option("CODE", options.code, "What it answers; 0 takes its fault away");
    auto *times = fault->add_option("--times", options.times, "For so many calls; 0 is for all");
    auto *after = fault->add_option("--after", options.after, "Only behind so many good calls");
    for (auto *option : {operation, code, times, after})
        option->excludes(clear);
    fault->final_callback([&options, operation, code] {
        if (!options.clear && (operation->empty() || code->empty()))
            throw CLI::RequiredError("OPERATION and CODE, or --clear");
        setFault(options);
    });

    auto *delay = app.add_subcommand("delay", "Lets each call of an operation take longer");
    delay->add_option("OPERATION", options.operation, "An operation of the contract")->required();
    delay->add_option("MS", options.milliseconds, "Milliseconds; 0 takes the delay away")
        ->required();
    delay->final_callback([&] {
        tool::requireOperation(options.operation);
        require(virtualunit::setDelay(options.operation, options.milliseconds));
    });

    auto *faults = app.add_subcommand("faults", "Lists the faults and delays that are set");
    addJsonFlag(*faults, options);
    faults->final_callback([&] { tool::listDisturbances(options.format()); });
}

void addSkeletonCommand(CLI::App &app)
{
    app.add_subcommand("skeleton", "Prints a device library in C to begin with: it keeps the "
                                   "contract and supports nothing")
        ->final_callback([] { std::cout << devicetools::skeleton(); });
}

void addJournalCommand(CLI::App &app, Options &options)
{
    auto *journal = app.add_subcommand("journal",
        "Prints the calls that programs with VORN_JOURNAL=FILE in their environment have made");
    options.journal = environment("VORN_JOURNAL");
    journal->add_option("--file", options.journal, "The journal's file, else that of VORN_JOURNAL");
    journal->add_flag("--follow", options.follow, "Goes on with new lines until interrupted");
    journal->add_flag("--clear", options.clear, "Empties it first, and prints nothing of it");
    journal->final_callback(
        [&] { tool::showJournal(options.journal, options.clear, options.follow); });
}

void addLineCommands(CLI::App &app, Options &options)
{
    options.folder = environment("VORN_SERIAL_DIR");
    auto *lines = app.add_subcommand("lines", virtualunit::lines::serveLinesHelp);
    lines->add_option("--dir", options.folder,
        "The folder with the lines under the names that the unit stores, else VORN_SERIAL_DIR");
    lines->add_option(
        "--gps", options.recording, "A file of NMEA sentences to be replayed over and over");
    lines->final_callback([&] {
        try {
            virtualunit::lines::serveLines(pathOf(options.folder), pathOf(options.recording));
        } catch (const std::runtime_error &trouble) {
            throw commandline::Refusal{trouble.what()};
        }
    });

    auto *sms =
        app.add_subcommand("sms", "Lists the short messages that the modem has sent, times in UTC");
    addJsonFlag(*sms, options);
    sms->final_callback([&] { tool::listShortMessages(options.format()); });
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Looks after the virtual unit: its state, its profile, its faults, its journal.");
    app.name("vornunit");
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done, 1 refused by the unit or the system, 2 wrong usage.");
    Options options;
    app.add_option("--unit", options.unit,
        "The unit's state file, else that of VORN_UNIT, else the user's own unit");
    // Parsed before any command runs, whichever side of the command it stands on.
    app.parse_complete_callback([&] {
        if (!options.unit.empty())
            require(virtualunit::open(options.unit));
    });
    app.fallthrough();
    addProfileCommands(app, options);
    addValueCommands(app, options);
    addDisturbanceCommands(app, options);
    addJournalCommand(app, options);
    addLineCommands(app, options);
    addSkeletonCommand(app);
    return commandline::run(app, argc, argv);
}
