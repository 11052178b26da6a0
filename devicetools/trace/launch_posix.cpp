#include "devicetools/trace/launch.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <elf.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace trace {

namespace {

using std::filesystem::path;

constexpr auto deviceLibrary = "libVornAux2.so";

/** Where execvp() would find the program; empty if nowhere. */
path programFile(const std::string &name)
{
    if (name.find('/') != std::string::npos)
        return name;
    const char *list = std::getenv("PATH");
    std::string folders = list ? list : "/bin:/usr/bin";
    folders += ':';
    for (std::size_t start = 0; start < folders.size();) {
        const auto end = folders.find(':', start);
        auto file = path(folders.substr(start, end - start)) / name;
        if (::access(file.c_str(), X_OK) == 0)
            return file;
        start = end + 1;
    }
    return {};
}

/** The system's loader, as the program names it; empty if it is no program of this kind. */
std::string loaderOf(const path &program)
{
    std::ifstream stream(program, std::ios::binary);
    Elf64_Ehdr head{};
    stream.read(reinterpret_cast<char *>(&head), sizeof head);
    if (!stream || std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 ||
        head.e_ident[EI_CLASS] != ELFCLASS64)
        return {};
    for (unsigned row = 0; row < head.e_phnum; ++row) {
        Elf64_Phdr part{};
        stream.seekg(static_cast<std::streamoff>(head.e_phoff + row * sizeof part));
        stream.read(reinterpret_cast<char *>(&part), sizeof part);
        if (!stream || part.p_type != PT_INTERP || part.p_filesz > PATH_MAX)
            continue;
        std::string name(part.p_filesz, '\0');
        stream.seekg(static_cast<std::streamoff>(part.p_offset));
        stream.read(name.data(), std::streamsize(name.size()));
        name.resize(std::strlen(name.c_str()));
        return stream ? name : std::string();
    }
    return {};
}

std::string forShell(const std::string &text)
{
    std::string quoted = "'";
    for (const char character : text)
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return quoted + "'";
}

/** Whether the loader finds a device library for the program. It is asked itself: only it knows
 *  all the places, and it doesn't run the program for that. */
bool findsDeviceLibrary(const path &program)
{
    const auto loader = loaderOf(program);
    if (loader.empty())
        return false;
    const auto question = forShell(loader) + " --list " + forShell(program) + " 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE *)> answer(::popen(question.c_str(), "r"), ::pclose);
    std::string text;
    std::array<char, 4096> piece;
    while (answer && std::fgets(piece.data(), piece.size(), answer.get()))
        text += piece.data();
    return text.find(std::string(deviceLibrary) + " => /") != std::string::npos;
}

/** Puts names in front of a list in the environment. */
void putInFront(const char *variable, const std::string &names)
{
    const char *former = std::getenv(variable);
    const auto all = former && *former ? names + ":" + former : names;
    ::setenv(variable, all.c_str(), 1);
}

bool canBeListed(const path &file)
{
    return file.native().find_first_of(" :;") == std::string::npos;
}

/**
 * The tracing library is loaded before all others, so that the program's calls find its functions
 * first, and the loader does for all else what it always does. Names are links in the folder: those
 * of files may hold what separates them in a list.
 */
void prepareLoader(const path &program, const Settings &settings, const path &folder)
{
    const auto tools = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto library = tools / VORNTRACE_LIBRARY_DIR / "libvorntrace.so";
    if (::access(library.c_str(), R_OK) != 0)
        throw std::runtime_error("\"" + library.string() + "\" is missing");
    const auto tracer = folder / "libvorntrace.so";
    const auto standIn = folder / deviceLibrary;
    std::filesystem::create_symlink(library, tracer);
    auto preloaded = tracer.string();
    if (!settings.library.empty()) {
        std::filesystem::create_symlink(settings.library, standIn);
        const path named = settings.library;
        preloaded += ":" + (canBeListed(named) ? named : standIn).string();
    } else if (!settings.replayed.empty() && !findsDeviceLibrary(program)) {
        // Nothing else would be the library that the program asks the loader for.
        std::filesystem::create_symlink(library, standIn);
    }
    if (std::filesystem::exists(standIn))
        putInFront("LD_LIBRARY_PATH", folder.string());
    putInFront("LD_PRELOAD", preloaded);
}

/** All that may be sent to vorntrace, less what means an error in itself. */
sigset_t sentSignals()
{
    sigset_t set;
    ::sigfillset(&set);
    for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
        ::sigdelset(&set, own);
    return set;
}

[[noreturn]] void becomeProgram(
    const std::vector<std::string> &command, const sigset_t &signals, int errors)
{
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const auto &argument : command) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): execv() leaves them as they are
        arguments.push_back(const_cast<char *>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    ::sigprocmask(SIG_SETMASK, &signals, nullptr);
    ::signal(SIGXFSZ, SIG_DFL); // what this process ignores for itself
    ::execvp(arguments.front(), arguments.data());
    const int error = errno;
    [[maybe_unused]] const auto told = ::write(errors, &error, sizeof error);
    ::_exit(127);
}

/** Passes signals on until the program has ended. */
Ending follow(pid_t program, const sigset_t &signals)
{
    for (;;) {
        siginfo_t info{};
        const int signal = ::sigwaitinfo(&signals, &info);
        int status = 0;
        if (signal == SIGCHLD) {
            if (::waitpid(program, &status, WNOHANG | WUNTRACED) != program)
                continue;
            if (WIFSTOPPED(status))
                ::kill(::getpid(), SIGSTOP);
            else if (WIFSIGNALED(status))
                return {0, WTERMSIG(status)};
            else if (WIFEXITED(status))
                return {WEXITSTATUS(status), 0};
        } else if (signal > 0 && info.si_code != SI_KERNEL) {
            // What a terminal sends, the program gets from it as well.
            ::kill(program, signal);
        }
    }
}

} // namespace

Ending launch(const std::vector<std::string> &command, const Settings &settings, const path &folder)
{
    prepareLoader(programFile(command.front()), settings, folder);
    for (const auto &[name, value] : settings.variables()) {
        if (value.empty())
            ::unsetenv(name.c_str());
        else
            ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::array<int, 2> errors{};
    if (::pipe2(errors.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::system_category(), "There is no pipe");
    ::signal(SIGCHLD, SIG_DFL);
    const auto signals = sentSignals();
    sigset_t former;
    ::sigprocmask(SIG_BLOCK, &signals, &former);
    const pid_t program = ::fork();
    if (program == 0)
        becomeProgram(command, former, errors[1]);
    const int forkError = errno;
    ::close(errors[1]);
    int error = 0;
    const bool failed = program > 0 && ::read(errors[0], &error, sizeof error) == sizeof error;
    ::close(errors[0]);
    if (failed)
        ::waitpid(program, nullptr, 0);
    if (program < 0 || failed) {
        ::sigprocmask(SIG_SETMASK, &former, nullptr);
        throw std::runtime_error("\"" + command.front() + "\" can't be started: " +
                                 std::strerror(failed ? error : forkError));
    }
    return follow(program, signals);
}

void endAs(const Ending &ending)
{
    if (ending.signal == 0)
        std::exit(ending.code);
    // The program has left its own core, if any.
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::signal(ending.signal, SIG_DFL);
    sigset_t only;
    ::sigemptyset(&only);
    ::sigaddset(&only, ending.signal);
    ::raise(ending.signal);
    ::sigprocmask(SIG_UNBLOCK, &only, nullptr);
    std::_Exit(128 + ending.signal);
}

path makeTemporaryFolder()
{
    auto parent = std::filesystem::temp_directory_path();
    if (!canBeListed(parent))
        parent = "/tmp";
    auto name = (parent / "vorntrace-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::system_error(
            errno, std::system_category(), "No folder below " + parent.string());
    return name;
}

} // namespace trace
