#include "devicetools/check/system.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <system_error>

namespace check::system {

namespace {

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(int(GetLastError()), std::system_category(), what);
}

std::wstring wide(const std::string &text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

HANDLE handleOf(std::intptr_t value)
{
    return reinterpret_cast<HANDLE>(value);
}

SECURITY_ATTRIBUTES inheritable()
{
    return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
}

/** As the runtime library of the started program takes it apart again. */
std::wstring quoted(const std::wstring &argument)
{
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        text += letter;
    }
    return text.append(backslashes, L'\\') + L'"';
}

std::wstring ownProgram()
{
    std::wstring path(32'768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), DWORD(path.size())));
    return path;
}

/** A file that goes with its last handle. */
HANDLE passingFile()
{
    wchar_t folder[MAX_PATH + 1];
    wchar_t name[MAX_PATH + 1];
    if (!GetTempPathW(MAX_PATH, folder) || !GetTempFileNameW(folder, L"vch", 0, name))
        fail("temporary file");
    auto attributes = inheritable();
    const HANDLE file = CreateFileW(name, GENERIC_READ | GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &attributes, CREATE_ALWAYS,
        FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        fail("temporary file");
    return file;
}

/** The exceptions that end a process; empty for an exit code of its own. */
std::string crashName(DWORD code)
{
    switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
        return "an access violation";
    case EXCEPTION_STACK_OVERFLOW:
        return "a stack overflow";
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
        return "a division by zero";
    case EXCEPTION_ILLEGAL_INSTRUCTION:
        return "an illegal instruction";
    case EXCEPTION_BREAKPOINT:
        return "a breakpoint";
    case 0xC0000374:
        return "damage of the heap";
    case 0xC0000409:
        return "an abort";
    default:
        return code >= 0xC0000000 ? "exception " + std::to_string(code) : std::string();
    }
}

std::atomic<int> wantedEnd = 0;

BOOL WINAPI noteEvent(DWORD event)
{
    wantedEnd = int(event) + 1;
    // A closed window or a log-off ends the process when this returns.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep(20'000);
    return TRUE;
}

} // namespace

SharedMemory::SharedMemory(std::size_t bytes)
    : size(bytes)
{
    auto attributes = inheritable();
    const HANDLE mapping = CreateFileMappingW(
        INVALID_HANDLE_VALUE, &attributes, PAGE_READWRITE, 0, DWORD(size), nullptr);
    if (!mapping)
        fail("shared memory");
    handle = reinterpret_cast<std::intptr_t>(mapping);
    memory = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, size);
    if (!memory)
        fail("shared memory");
}

SharedMemory::SharedMemory(const std::string &token, std::size_t bytes)
    : handle(static_cast<std::intptr_t>(std::stoll(token)))
    , memory(MapViewOfFile(handleOf(handle), FILE_MAP_ALL_ACCESS, 0, 0, bytes))
    , size(bytes)
{
    if (!memory)
        fail("shared memory");
}

SharedMemory::~SharedMemory()
{
    UnmapViewOfFile(memory);
    CloseHandle(handleOf(handle));
}

std::string SharedMemory::token() const
{
    return std::to_string(handle);
}

struct Process::Private {
    HANDLE process = nullptr;
    HANDLE output = nullptr;
    bool runs = false;
};

Process::Process(const std::vector<std::string> &arguments, const SharedMemory &)
    : d(std::make_unique<Private>())
{
    d->output = passingFile();
    std::wstring line = quoted(ownProgram());
    for (const auto &argument : arguments)
        line += L' ' + quoted(wide(argument));
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = d->output;
    start.hStdError = d->output;
    PROCESS_INFORMATION started{};
    // Its own group: the keys of the console are for the watching process alone.
    if (!CreateProcessW(ownProgram().c_str(), line.data(), nullptr, nullptr, TRUE,
            CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &start, &started)) {
        const auto error = GetLastError();
        CloseHandle(d->output);
        SetLastError(error);
        fail("a process can't be started");
    }
    CloseHandle(started.hThread);
    d->process = started.hProcess;
    d->runs = true;
}

Process::~Process()
{
    if (d->runs) {
        kill();
        wait(std::chrono::seconds(10));
    }
    CloseHandle(d->process);
    CloseHandle(d->output);
}

std::optional<End> Process::wait(std::chrono::milliseconds time)
{
    if (WaitForSingleObject(d->process, DWORD(time.count())) != WAIT_OBJECT_0)
        return std::nullopt;
    d->runs = false;
    DWORD code = 0;
    GetExitCodeProcess(d->process, &code);
    return End{int(code), crashName(code)};
}

void Process::kill()
{
    TerminateProcess(d->process, 9);
}

std::string Process::printed() const
{
    std::string text(300, '\0');
    DWORD count = 0;
    OVERLAPPED start{};
    if (!ReadFile(d->output, text.data(), DWORD(text.size()), &count, &start))
        count = 0;
    text.resize(count);
    return text;
}

void catchInterruptions()
{
    SetConsoleCtrlHandler(noteEvent, TRUE);
}

int interruption()
{
    return wantedEnd;
}

void endInterrupted(int)
{
    ExitProcess(STATUS_CONTROL_C_EXIT);
}

void prepareTestProcess()
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

Library::Library(const std::string &path)
    // What it needs itself may lie beside it.
    : handle(LoadLibraryExW(wide(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
{
    if (!handle)
        throw std::runtime_error(path + ": " + std::system_category().message(int(GetLastError())));
}

Library::~Library()
{
    FreeLibrary(static_cast<HMODULE>(handle));
}

Library::Function Library::function(const char *name) const
{
    return reinterpret_cast<Function>(
        reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(handle), name)));
}

GuardedMemory::GuardedMemory(std::size_t wanted)
{
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    const std::size_t page = info.dwPageSize;
    usable = (wanted + page - 1) / page * page;
    memory = static_cast<unsigned char *>(
        VirtualAlloc(nullptr, usable + page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD before = 0;
    if (!memory || !VirtualProtect(end(), page, PAGE_NOACCESS, &before))
        fail("memory");
}

GuardedMemory::~GuardedMemory()
{
    VirtualFree(memory, 0, MEM_RELEASE);
}

std::optional<std::string> umaskNow()
{
    return std::nullopt;
}

std::optional<std::string> signalHandlersNow()
{
    const auto handler = SetUnhandledExceptionFilter(nullptr);
    SetUnhandledExceptionFilter(handler);
    return std::to_string(reinterpret_cast<std::uintptr_t>(handler));
}

std::optional<int> threadsNow()
{
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (all == INVALID_HANDLE_VALUE)
        return std::nullopt;
    int count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(all, &entry); more; more = Thread32Next(all, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    CloseHandle(all);
    return count;
}

std::optional<std::vector<std::string>> descriptorsNow()
{
    DWORD count = 0;
    if (!GetProcessHandleCount(GetCurrentProcess(), &count))
        return std::nullopt;
    // The system tells no names.
    std::vector<std::string> open;
    for (DWORD number = 1; number <= count; ++number)
        open.push_back("handle " + std::to_string(10'000 + number));
    return open;
}

std::optional<std::size_t> privateBytesNow()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(),
            reinterpret_cast<PROCESS_MEMORY_COUNTERS *>(&counters), sizeof counters))
        return std::nullopt;
    return counters.PrivateUsage;
}

} // namespace check::system
