#include "virtualunit/system/system.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace virtualunit::system {

namespace {

class PosixFile : public AppendedFile
{
public:
    explicit PosixFile(int opened)
        : handle(opened)
    {}
    ~PosixFile() override { ::close(handle); }
    PosixFile(const PosixFile &) = delete;
    PosixFile &operator=(const PosixFile &) = delete;

    void append(std::string_view text) override
    {
        // What a full disk doesn't take is lost.
        [[maybe_unused]] const auto written = ::write(handle, text.data(), text.size());
    }

private:
    int handle;
};

} // namespace

const char *const userDataVariable = "HOME";

std::string environment(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::filesystem::path userDataFolder()
{
    std::filesystem::path folder = environment("XDG_DATA_HOME");
    if (!folder.is_absolute())
        folder = std::filesystem::path(environment("HOME")) / ".local" / "share";
    return folder.is_absolute() ? folder : std::filesystem::path();
}

std::unique_ptr<AppendedFile> AppendedFile::open(const std::filesystem::path &path)
{
    const int handle = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    return handle < 0 ? nullptr : std::make_unique<PosixFile>(handle);
}

std::vector<std::string> arguments(int argc, char **argv)
{
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void prepareStreams() {}

} // namespace virtualunit::system
