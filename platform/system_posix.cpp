#include "platform/system.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace platform {

namespace {

/**
 * A write whose failure is an error and no signal. A library leaves the handlers of the program
 * that uses it alone, so the signals are held back in this thread meanwhile, and taken out of it.
 */
void writeWithoutSignals(int handle, std::string_view text)
{
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals, &before);
    // What a full disk doesn't take is lost.
    if (::write(handle, text.data(), text.size()) < 0) {
        const int ours = errno == EPIPE ? SIGPIPE : SIGXFSZ;
        sigemptyset(&signals);
        sigaddset(&signals, ours);
        const std::timespec now{};
        while (sigismember(&before, ours) == 0 && sigtimedwait(&signals, nullptr, &now) > 0) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

class PosixFile : public AppendedFile
{
public:
    explicit PosixFile(int opened)
        : handle(opened)
    {}
    ~PosixFile() override { ::close(handle); }
    PosixFile(const PosixFile &) = delete;
    PosixFile &operator=(const PosixFile &) = delete;

    void append(std::string_view text) override { writeWithoutSignals(handle, text); }

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

std::unique_ptr<AppendedFile> AppendedFile::open(
    const std::filesystem::path &path, std::string &reason)
{
    // Without O_NONBLOCK the opening of a pipe waits for a reader for ever.
    const int handle =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666);
    if (handle < 0) {
        reason = errno == ENXIO ? "nobody reads that pipe" : std::generic_category().message(errno);
        return nullptr;
    }
    ::fcntl(handle, F_SETFL, ::fcntl(handle, F_GETFL) & ~O_NONBLOCK);
    return std::make_unique<PosixFile>(handle);
}

std::vector<std::string> arguments(int argc, char **argv)
{
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void prepareProcess()
{
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace platform
