#include "virtualunit/VirtualUnit.h"
#include "virtualunit/lines/serve.h"
#include "virtualunit/system/system.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using virtualunit::system::environment;
using virtualunit::system::pathOf;

/// The exit codes that scripts may rely on.
enum ExitCode { Done = 0, Refused = 1, WrongUsage = 2 };

/// Thrown where the unit or the system says no; the text goes to the standard error stream.
struct Refusal {
    std::string reason;
};

void require(const virtualunit::Error &error)
{
    if (!error.empty())
        throw Refusal{error};
}

struct Options {
    std::string unit;
    std::string profile;
    std::string name;
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
};

void listProperties()
{
    std::vector<virtualunit::Value> properties;
    require(virtualunit::list(properties));
    std::size_t nameWidth = 0;
    std::size_t valueWidth = 0;
    for (const auto &property : properties) {
        nameWidth = std::max(nameWidth, property.name.size());
        valueWidth = std::max(valueWidth, property.value.size());
    }
    // One long text must not push the explanations of all the others off the screen.
    valueWidth = std::min<std::size_t>(valueWidth, 24);
    const auto padded = [](std::string text, std::size_t width) {
        text.resize(std::max(text.size(), width), ' ');
        return text;
    };
    for (const auto &property : properties) {
        std::cout << padded(property.name, nameWidth) << "  " << padded(property.value, valueWidth)
                  << "  " << property.description;
        if (!property.range.empty())
            std::cout << " [" << property.range << ']';
        std::cout << '\n';
    }
}

void getProperty(const std::string &name)
{
    std::string value;
    require(virtualunit::get(name, value));
    std::cout << value << '\n';
}

void printProfile()
{
    std::string text;
    require(virtualunit::profileText(text));
    std::cout << text;
    if (text.empty() || text.back() != '\n')
        std::cout << '\n';
}

void printProfileNames()
{
    for (const auto &name : virtualunit::profiles())
        std::cout << name << '\n';
}

void setFault(const Options &options)
{
    if (options.clear)
        require(virtualunit::clearFaults());
    else
        require(
            virtualunit::setFault(options.operation, options.code, options.times, options.after));
}

/// Prints what the journal holds from that byte on and says where the next call goes on. A journal
/// that has become shorter was emptied and is read from its beginning.
std::uintmax_t printJournal(const std::string &file, std::uintmax_t position)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(pathOf(file), error);
    if (error || size == position)
        return error ? 0 : position;
    if (size < position)
        position = 0;
    std::ifstream stream(pathOf(file), std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(position));
    std::vector<char> chunk(std::size_t{64} * 1024);
    while (stream && std::cout) {
        stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        std::cout.write(chunk.data(), stream.gcount());
        position += static_cast<std::uintmax_t>(stream.gcount());
    }
    std::cout.flush();
    return position;
}

void clearJournal(const std::string &file)
{
    // Emptied in place: the processes that write to it go on writing to the same file.
    std::error_code error;
    std::filesystem::resize_file(pathOf(file), 0, error);
    if (error && error != std::errc::no_such_file_or_directory)
        throw Refusal{"The journal \"" + file + "\" can't be emptied: " + error.message()};
}

void showJournal(const Options &options)
{
    if (options.journal.empty())
        throw Refusal{"There is no journal: set VORN_JOURNAL to its file or name it with --file"};
    if (options.clear)
        clearJournal(options.journal);
    if (options.clear && !options.follow)
        return;
    if (!options.follow && !std::ifstream(pathOf(options.journal)))
        throw Refusal{"The journal \"" + options.journal + "\" can't be read"};
    auto position = printJournal(options.journal, 0);
    while (options.follow && std::cout) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        position = printJournal(options.journal, position);
    }
}

void addStateCommands(CLI::App &app, Options &options)
{
    auto *init = app.add_subcommand("init", "Makes the unit one of that profile, factory-new");
    init->add_option("PROFILE", options.profile, "A name that \"profiles\" lists, or a file")
        ->required();
    init->final_callback([&] { require(virtualunit::loadProfile(options.profile)); });

    app.add_subcommand("list", "Lists all values with their meaning and range")
        ->final_callback(listProperties);

    auto *get = app.add_subcommand("get", "Prints one value");
    get->add_option("NAME", options.name, "The value's name, such as Backlight.intensity")
        ->required();
    get->final_callback([&] { getProperty(options.name); });

    auto *set = app.add_subcommand("set", "Changes one value");
    set->add_option("NAME", options.name, "The value's name, such as Backlight.intensity")
        ->required();
    set->add_option("VALUE", options.value, "The new value; behind -- it may begin with a dash")
        ->required();
    set->final_callback([&] { require(virtualunit::set(options.name, options.value)); });

    app.add_subcommand("profile", "Prints the present unit as a profile file")
        ->final_callback(printProfile);
    app.add_subcommand("profiles", "Lists the profiles that come with the unit")
        ->final_callback(printProfileNames);
}

void addDisturbanceCommands(CLI::App &app, Options &options)
{
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
    delay->final_callback(
        [&] { require(virtualunit::setDelay(options.operation, options.milliseconds)); });
}

void addJournalCommand(CLI::App &app, Options &options)
{
    auto *journal = app.add_subcommand("journal",
        "Prints the calls that programs with VORN_JOURNAL=FILE in their environment have made");
    options.journal = environment("VORN_JOURNAL");
    journal->add_option("--file", options.journal, "The journal's file, else that of VORN_JOURNAL");
    journal->add_flag("--follow", options.follow, "Goes on with new lines until interrupted");
    journal->add_flag("--clear", options.clear, "Empties it first, and prints nothing of it");
    journal->final_callback([&] { showJournal(options); });
}

/// Control characters as C writes them, so that a message stays on its line.
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

void printMessages()
{
    std::vector<virtualunit::ShortMessage> messages;
    require(virtualunit::shortMessages(messages));
    for (const auto &message : messages) {
        // A state file may hold any number, and Windows knows no years before 1970 or after 3000.
        const auto seconds = static_cast<std::time_t>(message.time / 1000);
        if (const std::tm *utc = std::gmtime(&seconds))
            std::cout << std::put_time(utc, "%Y-%m-%d %H:%M:%S");
        else
            std::cout << message.time;
        std::cout << "  " << message.number << "  ";
        printText(message.text);
        std::cout << '\n';
    }
}

void addLineCommands(CLI::App &app, Options &options)
{
    options.folder = environment("VORN_SERIAL_DIR");
    auto *lines = app.add_subcommand("lines", virtualunit::lines::serveLinesHelp);
    lines->add_option("--dir", options.folder,
        "The folder with the lines under the names that the unit stores, else VORN_SERIAL_DIR");
    lines->add_option(
        "--gps", options.recording, "A file of NMEA sentences to be replayed over and over");
    lines->final_callback(
        [&] { virtualunit::lines::serveLines(pathOf(options.folder), pathOf(options.recording)); });

    app.add_subcommand("sms", "Lists the short messages that the modem has sent, times in UTC")
        ->final_callback(printMessages);
}

int run(int argc, char **argv)
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
    addStateCommands(app, options);
    addDisturbanceCommands(app, options);
    addJournalCommand(app, options);
    addLineCommands(app, options);
    auto arguments = virtualunit::system::arguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? Done : WrongUsage;
    }
    std::cout.flush();
    if (!std::cout)
        throw Refusal{"The output can't be written"};
    return Done;
}

} // namespace

int main(int argc, char **argv)
{
    virtualunit::system::prepareStreams();
    try {
        return run(argc, argv);
    } catch (const Refusal &refusal) {
        std::cerr << "vornunit: " << refusal.reason << '\n';
    } catch (const std::exception &error) {
        std::cerr << "vornunit: " << error.what() << '\n';
    }
    return Refused;
}
