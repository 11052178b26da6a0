#include "commandline/commandline.h"
#include "reports/exchange.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace reports;

/// The exit codes that scripts may rely on; those of diff(1).
enum ExitCode { Done = 0, Found = 1, InTrouble = 2 };

void leave(ExitCode code)
{
    if (code != Done)
        throw CLI::RuntimeError(code);
}

void tell(const Trouble &trouble)
{
    std::cerr << "vornreport: " << trouble.text << '\n';
}

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

/// Does the job for each of the reports that were named.
void forEach(const Options &options, const Job &job, std::string_view head = {})
{
    if (options.files.empty() && options.list.empty())
        throw CLI::RequiredError("FILE or --files-from");
    Inputs inputs(options.files, options.list);
    std::cout << head << std::flush;
    try {
        leave(forEachInOrder(inputs, job) ? Done : InTrouble);
    } catch (const Trouble &trouble) {
        tell(trouble);
        leave(InTrouble);
    }
}

void addExchange(CLI::App &app, Options &options)
{
    auto *json = app.add_subcommand("json", "Prints one JSON object a line for each report");
    addFiles(*json, options);
    json->footer("Example: vornreport json reports/ | jq -r '.file, .generated'");
    json->final_callback([&] { forEach(options, writeJson); });

    auto *table = app.add_subcommand("table", "Prints CSV, one row for each line of the reports");
    addFiles(*table, options);
    table->footer("Example: vornreport table reports/ > reports.csv");
    table->final_callback([&] { forEach(options, writeTable, tableHead); });
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Reads system reports: for other programs, for comparing, for judging.");
    app.name("vornreport");
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done, the same or clean; 1 different or with findings; 2 trouble, which is\n"
        "told on the standard error stream, or wrong usage.\n"
        "\"vornreport COMMAND --help\" tells each command's options.");
    Options options;
    addExchange(app, options);
    return commandline::run(app, argc, argv);
}
