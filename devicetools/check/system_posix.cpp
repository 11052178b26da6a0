#include "devicetools/check/system.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace check::system {

namespace {

constexpr int memoryDescriptor = 3; ///< where a test's process finds the memory

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** A file without a name, gone with its last descriptor. */
int namelessFile()
{
    std::string name = std::filesystem::temp_directory_path().string() + "/vorncheck-XXXXXX";
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        fail("temporary file");
    ::unlink(name.c_str());
    return descriptor;
}

std::string signalName(int number)
{
    const char *name = ::sigabbrev_np(number);
    return name ? std::string("SIG") + name : "signal " + std::to_string(number);
}

volatile std::sig_atomic_t caughtSignal = 0;

extern "C" void noteSignal(int number)
{
    caughtSignal = number;
}

/** What tells that a process has ended. */
sigset_t childSignal()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    return set;
}

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

} // namespace

SharedMemory::SharedMemory(std::size_t bytes)
    : handle(namelessFile())
    , size(bytes)
{
    if (::ftruncate(int(handle), static_cast<off_t>(size)) != 0)
        fail("shared memory");
    memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, int(handle), 0);
    if (memory == MAP_FAILED)
        fail("shared memory");
}

SharedMemory::SharedMemory(const std::string &token, std::size_t bytes)
    : handle(std::stoi(token))
    , memory(::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, int(handle), 0))
    , size(bytes)
{
    if (memory == MAP_FAILED)
        fail("shared memory");
}

SharedMemory::~SharedMemory()
{
    ::munmap(memory, size);
    ::close(int(handle));
}

std::string SharedMemory::token() const
{
    return std::to_string(memoryDescriptor);
}

struct Process::Private {
    pid_t id = -1;
    int output = -1;
    bool runs = false;
};

Process::Process(const std::vector<std::string> &arguments, const SharedMemory &memory)
    : d(std::make_unique<Private>())
{
    // Kept until it is waited for. Who ignores it, as a parent may have it, never gets a process's
    // end.
    std::signal(SIGCHLD, SIG_DFL);
    const auto children = childSignal();
    ::sigprocmask(SIG_BLOCK, &children, nullptr);
    d->output = namelessFile();
    // Not the descriptor that the memory gets: a duplicate onto itself would stay closed on exec.
    const int shared = ::fcntl(int(memory.descriptor()), F_DUPFD_CLOEXEC, 10);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, d->output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, d->output, STDERR_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, shared, memoryDescriptor);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    // The terminal's keys are for the watching process alone, which ends the test in order.
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);

    std::vector<std::string> words{"vorncheck"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> pointers;
    pointers.reserve(words.size() + 1);
    for (auto &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const int error =
        ::posix_spawn(&d->id, "/proc/self/exe", &actions, &attributes, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
    ::close(shared);
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "a process can't be started");
    d->runs = true;
}

Process::~Process()
{
    if (d->runs) {
        kill();
        wait(std::chrono::seconds(10));
    }
    ::close(d->output);
}

std::optional<End> Process::wait(std::chrono::milliseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    for (;;) {
        int status = 0;
        if (::waitpid(d->id, &status, WNOHANG) == d->id) {
            d->runs = false;
            End end;
            if (WIFSIGNALED(status))
                end.crash = signalName(WTERMSIG(status));
            else
                end.exitCode = WEXITSTATUS(status);
            return end;
        }
        const auto rest = std::chrono::nanoseconds(deadline - std::chrono::steady_clock::now());
        if (rest.count() <= 0)
            return std::nullopt;
        // Ends early when a process has ended, and when somebody wants this one to end.
        const timespec most{rest.count() / 1'000'000'000, rest.count() % 1'000'000'000};
        const auto children = childSignal();
        ::sigtimedwait(&children, nullptr, &most);
    }
}

void Process::kill()
{
    ::kill(d->id, SIGKILL);
}

std::string Process::printed() const
{
    std::string text(300, '\0');
    const auto count = ::pread(d->output, text.data(), text.size(), 0);
    text.resize(count > 0 ? std::size_t(count) : 0);
    return text;
}

void catchInterruptions()
{
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    for (const int number : endingSignals)
        ::sigaction(number, &action, nullptr);
}

int interruption()
{
    return caughtSignal;
}

void endInterrupted(int event)
{
    std::signal(event, SIG_DFL);
    std::raise(event);
    ::_exit(128 + event);
}

void prepareTestProcess()
{
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

Library::Library(const std::string &path)
    : handle(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!handle)
        throw std::runtime_error(::dlerror());
}

Library::~Library()
{
    ::dlclose(handle);
}

Library::Function Library::function(const char *name) const
{
    return reinterpret_cast<Function>(::dlsym(handle, name));
}

GuardedMemory::GuardedMemory(std::size_t wanted)
{
    const auto page = std::size_t(::sysconf(_SC_PAGESIZE));
    usable = (wanted + page - 1) / page * page;
    void *pages =
        ::mmap(nullptr, usable + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        fail("memory");
    memory = static_cast<unsigned char *>(pages);
    if (::mprotect(end(), page, PROT_NONE) != 0)
        fail("memory");
}

GuardedMemory::~GuardedMemory()
{
    ::munmap(memory, usable + std::size_t(::sysconf(_SC_PAGESIZE)));
}

std::optional<std::string> umaskNow()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    char text[16];
    std::snprintf(text, sizeof text, "%03o", unsigned(mask));
    return text;
}

std::optional<std::string> signalHandlersNow()
{
    std::string text;
    for (int number = 1; number < SIGRTMAX; ++number) {
        struct sigaction action = {};
        if (::sigaction(number, nullptr, &action) != 0)
            continue;
        if (action.sa_handler == SIG_IGN)
            text += signalName(number) + " ignored ";
        else if (action.sa_handler != SIG_DFL)
            text += signalName(number) + " handled ";
    }
    return text;
}

std::optional<int> threadsNow()
{
    int count = 0;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/task", error)) {
        static_cast<void>(entry);
        ++count;
    }
    return count > 0 ? std::optional(count) : std::nullopt;
}

std::optional<std::vector<std::string>> descriptorsNow()
{
    std::vector<std::string> open;
    for (int number = 0; number < 1024; ++number) {
        if (::fcntl(number, F_GETFD) == -1)
            continue;
        std::error_code error;
        const auto target =
            std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(number), error);
        open.push_back(std::to_string(number) + " " + target.string());
    }
    std::sort(open.begin(), open.end());
    return open;
}

std::optional<std::size_t> privateBytesNow()
{
    ::malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    std::size_t shared = 0;
    if (!(file >> total >> resident >> shared))
        return std::nullopt;
    return (resident - shared) * std::size_t(::sysconf(_SC_PAGESIZE));
}

} // namespace check::system
