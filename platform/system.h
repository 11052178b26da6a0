#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/**
 * What device libraries and tools without a window want to know of the operating system: no Qt in
 * here. All texts are UTF-8 on every system.
 */
namespace platform {

/** A variable of the environment; empty if it is not set. */
std::string environment(const char *name);

/** Where programs keep a user's data, absolute; empty if the environment doesn't tell. */
std::filesystem::path userDataFolder();

/** Name of the variable that tells userDataFolder(), for messages. */
extern const char *const userDataVariable;

inline std::filesystem::path pathOf(std::string_view text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string textOf(const std::filesystem::path &path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

/** A file that several processes may append to at once. Failures of writing are ignored. */
class AppendedFile
{
public:
    virtual ~AppendedFile() = default;
    /** Appends all of it by one write of its own. Waits for the reader of a pipe that is full. */
    virtual void append(std::string_view text) = 0;

    /** Opened, or made if it isn't there. Else null, and the reason says why; a pipe is refused
     * that nobody reads. */
    static std::unique_ptr<AppendedFile> open(
        const std::filesystem::path &path, std::string &reason);
};

/** The arguments behind the program's name, from those of main(). */
std::vector<std::string> arguments(int argc, char **argv);

/** For the main() of a tool, not for libraries: the standard streams take UTF-8 and leave line ends
 * as they are, and what goes beyond the limit of file sizes is an error rather than the end. */
void prepareProcess();

} // namespace platform
