#include "commandline/commandline.h"

#include "commandline/version.h"
#include "platform/system.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <numeric>

namespace commandline {

namespace {

std::string lowered(std::string_view text)
{
    std::string lower(text);
    for (char &letter : lower)
        letter = 'A' <= letter && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
    return lower;
}

/** How many letters must be put in, left out, changed or swapped with their neighbour. */
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = a[i - 1] == b[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + changed});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.back();
}

std::vector<std::string> commandsOf(const CLI::App &app)
{
    std::vector<std::string> names;
    for (const auto *command : app.get_subcommands([](const CLI::App *) { return true; }))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> optionsOf(const CLI::App &app)
{
    std::vector<std::string> names;
    for (const auto *option : app.get_options()) {
        for (const auto &name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

/** What the parser means, in our words where it has none for it. */
std::string usageMessage(const CLI::App &app, const CLI::ParseError &error)
{
    const auto commands = app.get_subcommands();
    const auto *used = commands.empty() ? &app : commands.back();
    const auto rest = app.remaining(true);
    const bool isOption = !rest.empty() && rest.front().starts_with('-');
    if (isOption) {
        auto options = optionsOf(*used);
        if (used != &app) {
            const auto common = optionsOf(app);
            options.insert(options.end(), common.begin(), common.end());
        }
        return unknown("option", rest.front(), options);
    }
    const auto known = commandsOf(app);
    if (!known.empty() && commands.empty())
        return rest.empty() ? "A command is missing" : unknown("command", rest.front(), known);
    if (!rest.empty())
        return "\"" + rest.front() + "\" is too much for \"" + used->get_name() + "\"";
    return error.what();
}

int parse(CLI::App &app, std::vector<std::string> arguments)
{
    const std::string_view version = vornVersion;
    app.set_version_flag("--version",
        std::string(app.get_name()).append(version.substr(version.find(' '))),
        "Prints the version and the commit");
    std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
    int exitCode = Done;
    try {
        app.parse(arguments);
    } catch (const CLI::RuntimeError &error) {
        exitCode = error.get_exit_code();
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0) {
            const auto message = usageMessage(app, error);
            const auto advice = "; see \"" + app.get_name() + " --help\"";
            std::cerr << app.get_name() << ": " << message
                      << (message.ends_with('?') ? std::string() : advice) << '\n';
            return WrongUsage;
        }
        app.exit(error); // help and version
    }
    std::cout.flush();
    if (!std::cout)
        throw Refusal{"The output can't be written"};
    return exitCode;
}

} // namespace

std::string nearest(std::string_view word, const std::vector<std::string> &candidates)
{
    const auto wanted = lowered(word);
    std::string best;
    std::size_t bestDistance = word.size() / 3 + 1;
    for (const auto &candidate : candidates) {
        const auto far = distance(wanted, lowered(candidate));
        if (far < bestDistance) {
            bestDistance = far;
            best = candidate;
        }
    }
    return best;
}

std::string unknown(
    std::string_view kind, std::string_view word, const std::vector<std::string> &candidates)
{
    std::string sentence = "There is no ";
    sentence.append(kind).append(" \"").append(word).append("\"");
    const auto meant = nearest(word, candidates);
    return meant.empty() ? sentence : sentence + "; did you mean \"" + meant + "\"?";
}

bool matches(std::string_view name, std::string_view filter)
{
    return lowered(name).find(lowered(filter)) != std::string::npos;
}

int run(CLI::App &app, int argc, char **argv) noexcept
{
    return run(app, platform::arguments(argc, argv));
}

int run(CLI::App &app, std::vector<std::string> arguments) noexcept
{
    platform::prepareProcess();
    try {
        return parse(app, std::move(arguments));
    } catch (const Refusal &refusal) {
        std::cerr << app.get_name() << ": " << refusal.sentence << '\n';
        return refusal.exitCode;
    } catch (const std::exception &exception) {
        std::cerr << app.get_name() << ": It went wrong: " << exception.what() << '\n';
    }
    return Refused;
}

} // namespace commandline
