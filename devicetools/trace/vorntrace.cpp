#include "commandline/commandline.h"
#include "devicetools/contract.h"
#include "devicetools/trace/Settings.h"
#include "devicetools/trace/Tally.h"
#include "devicetools/trace/format.h"
#include "devicetools/trace/launch.h"
#include "devicetools/trace/traceFile.h"
#include "platform/system.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>

namespace {

using platform::pathOf;
using platform::textOf;
using trace::Ending;
using trace::Settings;

/** The exit code of --strict. */
constexpr int notInTrace = 3;

struct Options {
    Settings settings;
    bool isStrict = false;
    std::vector<std::string> command;
};

/** A folder until its end. */
class TemporaryFolder
{
public:
    ~TemporaryFolder()
    {
        std::error_code ignored; // it lies where the system tidies up
        std::filesystem::remove_all(path, ignored);
    }
    const std::filesystem::path path = trace::makeTemporaryFolder();
};

std::string absolute(const std::string &file)
{
    return file.empty() ? file : textOf(std::filesystem::absolute(pathOf(file)));
}

void beginTrace(const std::string &file)
{
    if (file.empty()) {
        std::cerr << trace::versionLine << '\n';
        return;
    }
    std::ofstream stream(pathOf(file), std::ios::binary | std::ios::trunc);
    stream << trace::versionLine << '\n';
    stream.close();
    if (!stream)
        throw std::runtime_error("The trace \"" + file + "\" can't be written");
}

/** Runs the program and gives what is to be said of its calls to `judge`, which returns the end. */
template <typename Judge>
Ending run(Options &options, Judge judge)
{
    TemporaryFolder folder;
    const auto file = folder.path / "tally";
    const auto tally = trace::Tally::open(file);
    if (!tally)
        throw std::runtime_error("\"" + textOf(file) + "\" can't be written");
    options.settings.tally = textOf(file);
    options.settings.start =
        std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    return judge(trace::launch(options.command, options.settings, folder.path), *tally);
}

Ending recordCalls(Options &options)
{
    auto &settings = options.settings;
    settings.output = absolute(settings.output);
    settings.library = absolute(settings.library);
    if (!settings.library.empty() && !std::ifstream(pathOf(settings.library)))
        throw std::runtime_error("The library \"" + settings.library + "\" can't be read");
    beginTrace(settings.output);
    return run(options, [](const Ending &ending, const trace::Tally &tally) {
        if (tally.calls() == 0)
            std::cerr << "vorntrace: The program called no device library\n";
        return ending;
    });
}

Ending replayTrace(Options &options)
{
    auto &settings = options.settings;
    settings.replayed = absolute(settings.replayed);
    const auto warning = trace::readFile(settings.replayed).warning;
    if (!warning.empty())
        std::cerr << "vorntrace: " << warning << '\n';
    return run(options, [&](Ending ending, const trace::Tally &tally) {
        std::cerr << "vorntrace: " << tally.calls() << " calls, " << tally.unknown()
                  << " not in the trace";
        if (tally.unknown() > 0)
            std::cerr << ", the first " << tally.firstUnknown();
        std::cerr << '\n';
        if (options.isStrict && tally.unknown() > 0 && ending.signal == 0)
            ending.code = notInTrace;
        return ending;
    });
}

/** Runs the program, and ends as it did. */
void endAfter(Ending (*runProgram)(Options &), Options &options)
{
    if (options.command.empty())
        throw CLI::ParseError(
            "There is no program: it stands behind --", CLI::ExitCodes::RequiredError);
    try {
        trace::endAs(runProgram(options));
    } catch (const std::runtime_error &trouble) {
        throw commandline::Refusal{trouble.what()};
    }
}

std::vector<std::string> operationNames()
{
    std::vector<std::string> names;
    for (const auto &operation : contract::operations)
        names.emplace_back(operation.name);
    return names;
}

/** A check of an option that says what is wrong with it. */
template <typename Parse>
CLI::Validator checkedBy(Parse parse, const std::string &form)
{
    return CLI::Validator(
        [parse](const std::string &text) -> std::string {
            const auto name = text.substr(0, text.find('='));
            if (!contract::find(contract::operations, name))
                return commandline::unknown("operation", name, operationNames());
            try {
                parse(text);
                return {};
            } catch (const std::invalid_argument &error) {
                return error.what();
            }
        },
        form);
}

void addRecord(CLI::App &app, Options &options)
{
    auto *record = app.add_subcommand("record", "Writes down what a program asks its device "
                                                "library, and what that answers");
    auto &settings = options.settings;
    record->add_option("--output", settings.output, "The trace's file, else standard error");
    record->add_option("--library", settings.library,
        "The device library's file, else the one that the program is bound to");
    record->add_flag("--times", settings.times,
        "Puts seconds since the start in front of each call and its duration behind");
    record
        ->add_option("--fault", settings.faults,
            "Lets an operation fail with a code, without asking the library, from the call behind "
            "N good ones on, and that N times")
        ->allow_extra_args(false)
        ->check(checkedBy(trace::parseFault, "OPERATION=CODE[,after=N][,times=N]"));
    record
        ->add_option(
            "--delay", settings.delays, "Lets each call of an operation take so much longer")
        ->allow_extra_args(false)
        ->check(checkedBy(trace::parseDelay, "OPERATION=MILLISECONDS"));
    record->final_callback([&options] { endAfter(recordCalls, options); });
    record->footer("The program comes last: vorntrace record [OPTIONS] -- PROGRAM [ARGUMENTS...]");
}

void addReplay(CLI::App &app, Options &options)
{
    auto *replay = app.add_subcommand(
        "replay", "Runs a program on the answers of a trace, or of a virtual unit's journal");
    replay->add_option("TRACE", options.settings.replayed, "The trace's file")->required();
    replay->add_flag(
        "--strict", options.isStrict, "Exits with 3 if the program asked what is not in the trace");
    replay->add_flag(
        "--times", options.settings.times, "Lets each call take as long as it is recorded");
    replay->final_callback([&options] { endAfter(replayTrace, options); });
    replay->footer(
        "The program comes last: vorntrace replay [OPTIONS] TRACE -- PROGRAM [ARGUMENTS...]");
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Records what a program asks its device library, and answers from the record.");
    app.name("vorntrace");
    app.require_subcommand(1);
    app.footer("The exit code is the program's own; else 1 for what is refused by the system or is "
               "no trace, 2 for wrong usage, 3 for --strict.");
    Options options;
    addRecord(app, options);
    addReplay(app, options);

    auto arguments = platform::arguments(argc, argv);
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    if (mark != arguments.end())
        options.command.assign(mark + 1, arguments.end());
    arguments.erase(mark, arguments.end());
    return commandline::run(app, std::move(arguments));
}
