#include "reports/exchange.h"
#include "virtualunit/system/system.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace reports;

/// The exit codes that scripts may rely on; those of diff(1).
enum ExitCode { Done = 0, Found = 1, InTrouble = 2 };

struct Options {
    std::vector<std::string> files;
    std::string list;
};

void addFiles(CLI::App &command, Options &options)
{
    command.add_option(
        "FILE", options.files, "Reports; - is the standard input, of a folder all .txt files");
    command.add_option(
        "--files-from", options.list, "A file with one name a line, - for the standard input");
}

Inputs inputsOf(const Options &options)
{
    if (options.files.empty() && options.list.empty())
        throw CLI::RequiredError("FILE or --files-from");
    return {options.files, options.list};
}

void addExchange(CLI::App &app, Options &options, int &result)
{
    auto *json = app.add_subcommand("json", "Prints one JSON object a line for each report");
    addFiles(*json, options);
    json->footer("Example: vornreport json reports/ | jq -r '.file, .generated'");
    json->final_callback([&] {
        Inputs inputs = inputsOf(options);
        result = forEachInOrder(inputs, writeJson) ? Done : InTrouble;
    });

    auto *table = app.add_subcommand("table", "Prints CSV, one row for each line of the reports");
    addFiles(*table, options);
    table->footer("Example: vornreport table reports/ > reports.csv");
    table->final_callback([&] {
        Inputs inputs = inputsOf(options);
        std::cout << tableHead << std::flush;
        result = forEachInOrder(inputs, writeTable) ? Done : InTrouble;
    });
}

int run(int argc, char **argv)
{
    CLI::App app("Reads system reports: for other programs, for comparing, for judging.");
    app.name("vornreport");
    app.require_subcommand(1);
    app.set_version_flag("--version", "vornreport " VORN_VERSION);
    app.footer(
        "Exit codes: 0 done, the same or clean; 1 different or with findings; 2 trouble, which is\n"
        "told on the standard error stream, or wrong usage.\n"
        "\"vornreport COMMAND --help\" tells each command's options.");
    Options options;
    int result = Done;
    addExchange(app, options, result);
    auto arguments = virtualunit::system::arguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? Done : InTrouble;
    }
    std::cout.flush();
    if (!std::cout)
        throw Trouble{"the output can't be written"};
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    virtualunit::system::prepareStreams();
    try {
        return run(argc, argv);
    } catch (const Trouble &trouble) {
        std::cerr << "vornreport: " << trouble.text << '\n';
    } catch (const std::exception &error) {
        std::cerr << "vornreport: " << error.what() << '\n';
    }
    return InTrouble;
}
