#include "platform/system.h"

#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace platform {

namespace {

class WindowsFile : public AppendedFile
{
public:
    explicit WindowsFile(HANDLE opened)
        : handle(opened)
    {}
    ~WindowsFile() override { CloseHandle(handle); }
    WindowsFile(const WindowsFile &) = delete;
    WindowsFile &operator=(const WindowsFile &) = delete;

    void append(std::string_view text) override
    {
        DWORD written = 0;
        WriteFile(handle, text.data(), DWORD(text.size()), &written, nullptr);
    }

private:
    HANDLE handle;
};

std::wstring variable(const wchar_t *name)
{
    std::wstring value;
    for (DWORD size = GetEnvironmentVariableW(name, nullptr, 0); size > value.size();) {
        value.resize(size);
        size = GetEnvironmentVariableW(name, value.data(), size);
        if (size < value.size()) {
            value.resize(size);
            break;
        }
    }
    return value;
}

} // namespace

const char *const userDataVariable = "LOCALAPPDATA";

std::string environment(const char *name)
{
    return textOf(variable(pathOf(name).c_str()));
}

std::filesystem::path userDataFolder()
{
    std::filesystem::path folder = variable(L"LOCALAPPDATA");
    return folder.is_absolute() ? folder : std::filesystem::path();
}

std::unique_ptr<AppendedFile> AppendedFile::open(
    const std::filesystem::path &path, std::string &reason)
{
    // With this right alone the system itself moves each write to the file's end.
    const HANDLE handle = CreateFileW(path.c_str(), FILE_APPEND_DATA,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const std::error_code error(int(GetLastError()), std::system_category());
        reason = error.message();
        return nullptr;
    }
    return std::make_unique<WindowsFile>(handle);
}

std::vector<std::string> arguments(int, char **)
{
    // What main() gets is in the code page of the machine.
    std::vector<std::string> texts;
    int count = 0;
    wchar_t **wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i)
        texts.push_back(textOf(wide[i]));
    LocalFree(wide);
    return texts;
}

void prepareProcess()
{
    SetConsoleOutputCP(CP_UTF8);
    for (std::FILE *stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
}

} // namespace platform
