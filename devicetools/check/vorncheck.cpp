#include "commandline/commandline.h"
#include "devicetools/check/watch.h"
#include "platform/system.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>

namespace {

using check::Outcome;
using check::Result;
using check::Test;

/** The exit codes that scripts may rely on, beside those of all tools. */
enum ExitCode { Passed = 0, Failed = 1 };

constexpr const char *words[] = {"PASS", "FAIL", "WARN", "SKIP"};

struct Settings {
    check::Options check;
    std::vector<std::string> only;
    bool list = false;
    bool json = false;
};

/** What a library or a system says, on one line of the terminal. */
std::string onOneLine(std::string text)
{
    for (char &byte : text) {
        if (static_cast<unsigned char>(byte) < ' ' || byte == '\x7F')
            byte = '?';
    }
    return text;
}

std::string lineOf(const Test &test, const Outcome &outcome)
{
    std::string line = words[int(outcome.result)] + (' ' + std::string(test.name));
    for (std::size_t i = 0; i < outcome.findings.size(); ++i)
        line += (i == 0 ? ": " : "; ") + onOneLine(outcome.findings[i]);
    return line;
}

nlohmann::json entryOf(const Test &test, const Outcome &outcome)
{
    std::string result = words[int(outcome.result)];
    std::transform(result.begin(), result.end(), result.begin(),
        [](char letter) { return char(letter - 'A' + 'a'); });
    return {{"name", test.name}, {"about", test.about}, {"result", result},
        {"findings", outcome.findings}};
}

std::string printable(const nlohmann::json &json)
{
    return json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

void listTests(bool json)
{
    auto entries = nlohmann::json::array();
    for (const auto &test : check::tests) {
        const char *needs = test.needs == check::Needs::Write      ? "--write"
                            : test.needs == check::Needs::Firmware ? "--firmware"
                                                                   : "";
        if (json)
            entries.push_back({{"name", test.name}, {"about", test.about}, {"needs", needs}});
        else
            std::cout << test.name << std::string(20 - std::string_view(test.name).size(), ' ')
                      << test.about << (*needs ? " [" + std::string(needs) + "]" : "") << '\n';
    }
    if (json)
        std::cout << printable(entries) << '\n';
}

/** Why a test isn't run; empty if it is. */
std::string reasonToSkip(const Test &test, const check::Options &options)
{
    if (test.needs == check::Needs::Write && !options.write)
        return "changes settings for a moment, which --write allows";
    if (test.needs == check::Needs::Firmware && options.firmware.empty())
        return "starts a verification, which --firmware allows";
    return {};
}

int checkLibrary(const Settings &settings)
{
    check::system::catchInterruptions();
    check::Watch watch(settings.check);
    watch.begin();
    int counts[4] = {};
    auto entries = nlohmann::json::array();
    for (const auto &test : check::tests) {
        if (!settings.only.empty() &&
            std::find(settings.only.begin(), settings.only.end(), test.name) == settings.only.end())
            continue;
        Outcome outcome{Result::Skip, {reasonToSkip(test, settings.check)}};
        if (outcome.findings.front().empty())
            outcome = watch.run(test);
        ++counts[int(outcome.result)];
        if (settings.json)
            entries.push_back(entryOf(test, outcome));
        else
            std::cout << lineOf(test, outcome) << std::endl;
    }
    if (settings.json)
        std::cout << printable({{"library", settings.check.library}, {"tests", entries},
                         {"passed", counts[0]}, {"failed", counts[1]}, {"warned", counts[2]},
                         {"skipped", counts[3]}})
                  << '\n';
    else
        std::cout << counts[0] << " passed, " << counts[1] << " failed, " << counts[2]
                  << " warned, " << counts[3] << " skipped\n";
    return counts[1] == 0 ? Passed : Failed;
}

void checkNames(const std::vector<std::string> &names)
{
    std::vector<std::string> known;
    for (const auto &test : check::tests)
        known.emplace_back(test.name);
    for (const auto &name : names) {
        if (std::find(known.begin(), known.end(), name) == known.end())
            throw check::CannotBegin{commandline::unknown("test", name, known)};
    }
}

void run(const Settings &settings)
try {
    if (settings.list)
        return listTests(settings.json);
    if (settings.check.library.empty())
        throw CLI::RequiredError("LIBRARY");
    checkNames(settings.only);
    if (const int code = checkLibrary(settings); code != Passed)
        throw CLI::RuntimeError(code);
} catch (const check::CannotBegin &error) {
    throw commandline::Refusal{error.reason, commandline::WrongUsage};
} catch (const CLI::Error &) {
    throw;
} catch (const std::exception &error) {
    throw commandline::Refusal{error.what(), commandline::WrongUsage};
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = platform::arguments(argc, argv);
    if (check::isTestProcess(arguments))
        return check::runTestProcess(arguments);

    CLI::App app("Looks whether a device library keeps the contract of VornAux2.h.");
    app.name("vorncheck");
    app.footer("Without --write and --firmware it only reads, and is safe on a unit in use.\n"
               "Exit codes: 0 no test failed, 1 one did, 2 the check can't begin.");
    Settings settings;
    app.add_flag("--write", settings.check.write,
        "Also changes settings, each of which is put back; nothing that runs is switched off");
    app.add_flag("--power", settings.check.power,
        "With --write, also switches power of rails and radios off and on");
    app.add_option("--firmware", settings.check.firmware,
           "Also verifies this firmware image, and a missing one; never programs")
        ->type_name("FILE");
    app.add_option("--only", settings.only, "Runs this test alone; may be given several times")
        ->type_name("TEST")
        ->allow_extra_args(false);
    app.add_option("--call-limit", settings.check.callLimit,
           "A call without an answer for so long counts as endless")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->check(CLI::Range(1, 3600));
    app.add_flag("--list", settings.list, "Lists the tests instead of running them");
    app.add_flag("--json", settings.json, "Prints JSON");
    app.add_option("LIBRARY", settings.check.library, "The device library's file");
    app.final_callback([&] { run(settings); });
    return commandline::run(app, arguments);
}
