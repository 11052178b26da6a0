#include "commandline/commandline.h"
#include "platform/system.h"
#include "reports/check.h"
#include "reports/diff.h"
#include "reports/exchange.h"
#include "reports/html.h"
#include "reports/unit.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <new>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace reports;

/** The exit codes that scripts may rely on; those of diff(1). */
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
    std::vector<std::string> tolerances;
    std::string rules;
    bool printRules = false;
    bool all = false;
    bool json = false;
};

void addFiles(CLI::App &command, Options &options)
{
    command.add_option(
        "FILE", options.files, "Reports; - is the standard input, of a folder all .txt files");
    command.add_option(
        "--files-from", options.list, "A file with one name a line, - for the standard input");
}

/** Runs a command; whatever stands in its way is trouble, which is not a difference. */
template <typename Command>
void attempt(Command command)
{
    try {
        command();
    } catch (const Trouble &trouble) {
        tell(trouble);
        leave(InTrouble);
    } catch (const std::bad_alloc &) {
        tell({"there is not enough memory"});
        leave(InTrouble);
    } catch (const CLI::Error &) {
        throw; // an exit code
    } catch (const std::exception &failure) {
        tell({failure.what()});
        leave(InTrouble);
    }
}

void print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Trouble{"the output can't be written"};
}

/** Does the job for each of the reports that were named. */
bool forEach(const Options &options, const Job &job)
{
    Inputs inputs(options.files, options.list);
    return forEachInOrder(inputs, job);
}

void requireFiles(const Options &options)
{
    if (options.files.empty() && options.list.empty())
        throw CLI::RequiredError("FILE or --files-from");
}

void addExchange(CLI::App &app, Options &options)
{
    auto *json = app.add_subcommand("json", "Prints one JSON object a line for each report");
    addFiles(*json, options);
    json->footer("Example: vornreport json reports/ | jq -r '.file, .generated'");
    json->final_callback([&] {
        requireFiles(options);
        attempt([&] { leave(forEach(options, writeJson) ? Done : InTrouble); });
    });

    auto *table = app.add_subcommand("table", "Prints CSV, one row for each line of the reports");
    addFiles(*table, options);
    table->footer("Example: vornreport table reports/ > reports.csv");
    table->final_callback([&] {
        requireFiles(options);
        attempt([&] {
            print(tableHead);
            leave(forEach(options, writeTable) ? Done : InTrouble);
        });
    });
}

void addDiff(CLI::App &app, Options &options)
{
    auto *diff = app.add_subcommand("diff", "Prints what changed from one report to another");
    diff->add_option("FILE", options.files, "The older and the newer report")
        ->required()
        ->expected(2);
    std::string help = "How far a living value may move unseen, as rail=2%; a number or per cent:";
    for (const Tolerance &tolerance : defaultTolerances()) {
        std::ostringstream amount;
        amount << tolerance.amount << (tolerance.percent ? "%" : "");
        help.append("\n").append(tolerance.name).append("=").append(amount.str());
        help.append(" ").append(tolerance.about);
    }
    diff->add_option("--tolerance", options.tolerances, help)->take_all()->expected(1);
    diff->add_flag("--all", options.all, "Everything, what is the same too");
    diff->add_flag("--json", options.json, "One JSON object a line for each of them");
    diff->footer("Example: vornreport diff --tolerance temperature=10 march.txt april.txt");
    diff->final_callback([&options] {
        attempt([&] {
            DiffOptions how{defaultTolerances(), options.all, options.json};
            for (const std::string &tolerance : options.tolerances)
                setTolerance(how.tolerances, tolerance);
            const Report before({options.files[0], {}});
            const Report after({options.files[1], {}});
            for (const Report *report : {&before, &after}) {
                if (!report->facts().complete)
                    tell({report->name() + ": is not complete"});
            }
            std::ostringstream changes;
            const bool found = printDiff(changes, before, after, how);
            print(changes.str());
            leave(found ? Found : Done);
        });
    });
}

std::string fileText(const std::string &name)
{
    std::ifstream file(platform::pathOf(name), std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf()))
        throw Trouble{name + ": can't be read"};
    return text.str();
}

std::vector<Rule> rulesOf(const Options &options)
{
    if (options.rules.empty())
        return builtInRules();
    try {
        return readRules(fileText(options.rules));
    } catch (const Trouble &trouble) {
        throw Trouble{options.rules + ": " + trouble.text};
    }
}

void addCheck(CLI::App &app, Options &options)
{
    auto *check = app.add_subcommand("check", "Prints what a technician should look at");
    addFiles(*check, options);
    check->add_option("--rules", options.rules, "A file with rules, instead of the built-in ones");
    check->add_flag(
        "--print-rules", options.printRules, "Prints the built-in rules, as --rules takes them");
    check->add_flag("--json", options.json, "One JSON object a line for each finding");
    check->footer("Example: vornreport check --rules ours.json reports/");
    check->final_callback([&options] {
        if (options.printRules) {
            attempt([] { print(builtInRulesText); });
            return;
        }
        requireFiles(options);
        attempt([&] {
            const std::vector<Rule> rules = rulesOf(options);
            std::atomic<bool> found = false;
            const bool sound = forEach(options, [&](const Input &input, Output &output) {
                const Report report(input);
                const auto findings = reports::check(report, rules);
                output.write(
                    options.json ? findingsJson(report, findings) : findingsText(report, findings));
                found = found || !findings.empty();
            });
            leave(!sound ? InTrouble : found ? Found : Done);
        });
    });
}

void addHtml(CLI::App &app, Options &options)
{
    auto *html = app.add_subcommand("html", "Prints one page to look at, for a browser or paper");
    addFiles(*html, options);
    html->add_option("--rules", options.rules, "A file with rules, instead of the built-in ones");
    html->footer("Two reports stand side by side, several of one unit become trends.\n"
                 "Example: vornreport html march.txt april.txt > page.html");
    html->final_callback([&options] {
        requireFiles(options);
        attempt([&] {
            const std::vector<Rule> rules = rulesOf(options);
            Inputs inputs(options.files, options.list);
            std::vector<Report> all;
            bool sound = true;
            for (Input input; inputs.next(input);) {
                try {
                    all.emplace_back(input);
                } catch (const Trouble &trouble) {
                    tell(trouble);
                    sound = false;
                }
            }
            if (!all.empty())
                print(htmlPage(all, rules));
            leave(sound ? Done : InTrouble);
        });
    });
}

void addUnit(CLI::App &app, Options &options)
{
    auto *unit = app.add_subcommand("unit", "Prints a virtual unit that would report so");
    unit->add_option("FILE", options.files, "The report, - is the standard input")
        ->required()
        ->expected(1);
    unit->add_flag("--untold", options.all,
        "Prints the values that the report doesn't tell, so that they are a fresh unit's");
    unit->footer("Example: vornreport unit report.txt > unit.json && vornunit init unit.json");
    unit->final_callback([&options] {
        attempt([&] {
            const Report report({options.files[0], {}});
            if (!report.facts().complete)
                tell({report.name() + ": is not complete"});
            const UnitProfile profile = unitProfile(report);
            std::string untold;
            for (const std::string &value : profile.untold)
                untold += value + '\n';
            print(options.all ? untold : profile.json);
        });
    });
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Reads system reports: for other programs, for comparing, for judging.");
    app.name("vornreport");
    app.require_subcommand(1);
    app.footer(
        "Examples:\n"
        "  vornreport html report.txt > page.html         one page to look at\n"
        "  vornreport diff march.txt april.txt            what changed in between\n"
        "  vornreport check reports/                      what a technician should look at\n"
        "  vornreport table reports/ > reports.csv        all lines, for SQLite and the like\n"
        "  find . -name '*.txt' | vornreport json --files-from - | gzip > fleet.json.gz\n"
        "  vornreport unit report.txt > unit.json && vornunit init unit.json\n"
        "\n"
        "Exit codes: 0 done, the same or clean; 1 different or with findings; 2 trouble, which is\n"
        "told on the standard error stream, or wrong usage.\n"
        "\"vornreport COMMAND --help\" tells each command's options.");
    Options options;
    addExchange(app, options);
    addDiff(app, options);
    addCheck(app, options);
    addHtml(app, options);
    addUnit(app, options);
    return commandline::run(app, argc, argv);
}
