#include "devicetools/trace/launch.h"

#include "platform/system.h"

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include <windows.h>

#include <winternl.h>

namespace trace {

namespace {

using platform::pathOf;
using platform::textOf;

// Of the same length, so that one takes the other's place.
constexpr char deviceLibrary[] = "VornAux2.dll";
constexpr char tracingLibrary[] = "VornTrac.dll";
static_assert(sizeof deviceLibrary == sizeof tracingLibrary);

std::string lastError()
{
    return std::system_category().message(int(GetLastError()));
}

/** As the C library of the program takes it apart again. */
std::wstring quoted(const std::wstring &argument)
{
    if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos)
        return argument;
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        text += character;
    }
    text.append(backslashes, L'\\');
    return text + L'"';
}

std::wstring commandLine(const std::vector<std::string> &command)
{
    std::wstring line;
    for (const auto &argument : command)
        line += (line.empty() ? L"" : L" ") + quoted(pathOf(argument).wstring());
    return line;
}

std::filesystem::path toolFolder()
{
    std::wstring name(32768, L'\0'); // no path is longer
    name.resize(GetModuleFileNameW(nullptr, name.data(), DWORD(name.size())));
    return std::filesystem::path(name).parent_path();
}

std::wstring variable(const wchar_t *name)
{
    std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), DWORD(value.size())));
    return value;
}

/** The variables of the settings, and the tracing library where the system searches last. */
void prepareEnvironment(const Settings &settings)
{
    const auto folder = toolFolder() / VORNTRACE_LIBRARY_DIR;
    if (!std::filesystem::exists(folder / tracingLibrary))
        throw std::runtime_error("\"" + textOf(folder / tracingLibrary) + "\" is missing");
    SetEnvironmentVariableW(L"PATH", (folder.wstring() + L";" + variable(L"PATH")).c_str());
    for (const auto &[name, value] : settings.variables()) {
        const auto text = pathOf(value).wstring();
        SetEnvironmentVariableW(
            pathOf(name).wstring().c_str(), text.empty() ? nullptr : text.c_str());
    }
}

/** The memory of a program that has not begun yet. */
class Image
{
public:
    explicit Image(HANDLE started)
        : process(started)
    {}

    /** Lets the program ask the system for the tracing library in place of the device's. Its file
     *  and its folder stay as they are: only what was loaded of it is changed. */
    void redirect()
    {
        PROCESS_BASIC_INFORMATION information{};
        const auto status = NtQueryInformationProcess(
            process, ProcessBasicInformation, &information, sizeof information, nullptr);
        if (status != 0)
            fail();
        // The loaded program's address is the third pointer of the process's block.
        base = read<std::uint64_t>(
            reinterpret_cast<std::uint64_t>(information.PebBaseAddress) + 2 * sizeof(void *));
        const auto head = read<IMAGE_DOS_HEADER>(base);
        const auto headers = read<IMAGE_NT_HEADERS64>(base + std::uint64_t(head.e_lfanew));
        if (headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
            return; // a program of 32 bits has another library
        const auto imports =
            headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        for (auto row = base + imports; imports != 0; row += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            const auto import = read<IMAGE_IMPORT_DESCRIPTOR>(row);
            if (import.Name == 0)
                break;
            redirectName(base + import.Name);
        }
    }

private:
    HANDLE process;
    std::uint64_t base = 0;

    [[noreturn]] static void fail()
    {
        throw std::runtime_error("The program can't be looked into: " + lastError());
    }

    template <typename T>
    T read(std::uint64_t address) const
    {
        T value{};
        if (!ReadProcessMemory(
                process, reinterpret_cast<void *>(address), &value, sizeof value, nullptr))
            fail();
        return value;
    }

    void redirectName(std::uint64_t address) const
    {
        using Name = std::array<char, sizeof deviceLibrary>;
        const auto name = read<Name>(address);
        if (name.back() != '\0' || _stricmp(name.data(), deviceLibrary) != 0)
            return;
        auto *place = reinterpret_cast<void *>(address);
        DWORD former = 0;
        if (!VirtualProtectEx(process, place, sizeof(Name), PAGE_READWRITE, &former) ||
            !WriteProcessMemory(process, place, tracingLibrary, sizeof(Name), nullptr))
            fail();
        VirtualProtectEx(process, place, sizeof(Name), former, &former);
    }
};

} // namespace

Ending launch(const std::vector<std::string> &command, const Settings &settings,
    const std::filesystem::path &)
{
    prepareEnvironment(settings);
    auto line = commandLine(command);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION program{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
            nullptr, &startup, &program)) {
        throw std::runtime_error("\"" + command.front() + "\" can't be started: " + lastError());
    }
    try {
        Image(program.hProcess).redirect();
    } catch (const std::exception &) {
        TerminateProcess(program.hProcess, 1);
        throw;
    }
    // The console tells the program itself; its end is awaited.
    SetConsoleCtrlHandler(nullptr, TRUE);
    ResumeThread(program.hThread);
    WaitForSingleObject(program.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(program.hProcess, &code);
    return {int(code), 0};
}

void endAs(const Ending &ending)
{
    std::exit(ending.code);
}

std::filesystem::path makeTemporaryFolder()
{
    const auto parent = std::filesystem::temp_directory_path();
    for (unsigned number = GetCurrentProcessId();; ++number) {
        auto folder = parent / ("vorntrace-" + std::to_string(number));
        if (std::filesystem::create_directory(folder))
            return folder;
    }
}

} // namespace trace
