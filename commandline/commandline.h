#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

/** What all tools without a window have in common: how they are asked, how they answer and how they
 *  refuse. All texts are UTF-8. */
namespace commandline {

/** The exit codes that scripts may rely on. */
enum ExitCode { Done = 0, Refused = 1, WrongUsage = 2 };

/** Thrown where a tool can't do what it was asked to. The sentence goes to the standard error
 * stream behind the tool's name. */
struct Refusal {
    std::string sentence;
    int exitCode = Refused;
};

/** The candidate that the word was probably meant to be: the same but for case, or but for a few
 *  letters. Empty if none comes near. */
std::string nearest(std::string_view word, const std::vector<std::string> &candidates);

/** There is no command "lists"; did you mean "list"? */
std::string unknown(
    std::string_view kind, std::string_view word, const std::vector<std::string> &candidates);

/** Whether the name has the filter in it, whatever the case; every name has an empty one. */
bool matches(std::string_view name, std::string_view filter);

/**
 * Parses main()'s arguments and so runs the application's callbacks. Gives it `--version`. Every
 * message begins with the application's name. Callbacks may throw a Refusal, a CLI::ParseError for
 * wrong usage, or CLI::RuntimeError for an exit code of their own.
 *
 * A write beyond the limit of file sizes is an error like any other in this process: the signal for
 * it is ignored from now on, also by programs that it starts, unless they think better of it.
 * @return the exit code for main()
 */
int run(CLI::App &app, int argc, char **argv) noexcept;
/** The same with the arguments behind the program's name, for who takes some of them for itself. */
int run(CLI::App &app, std::vector<std::string> arguments) noexcept;

} // namespace commandline
