#include "platform/platform.h"

#include "platform/calendarLine.h"

#include <QFile>

#include <array>
#include <cstdlib>
#include <ctime>

#include <windows.h>

#include <shellapi.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

// The size that is passed for a value of the registry, and room for more than that, so that there
// is always a zero behind it: values are stored with or without one.
constexpr DWORD valueBytes = 255;
using Wide = std::array<wchar_t, 255>;

const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

/** Where a value lies, and whether its key is closed when it could be read. */
struct BiosPlace {
    const wchar_t *key;
    const wchar_t *value;
    bool keepsKeyOpen;
};

BiosPlace placeOf(BiosValue value)
{
    if (value == BiosValue::BaseBoardProduct) // deliberately left open until the process ends
        return {L"HARDWARE\\DESCRIPTION\\System\\BIOS\\", L"BaseBoardProduct", true};
    return {L"HARDWARE\\Description\\System", L"SystemBiosVersion", false};
}

fs::path programFolder()
{
    std::wstring file(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, file.data(), DWORD(file.size()));
        if (length < file.size()) {
            file.resize(length);
            return fs::path(file).parent_path();
        }
        file.resize(file.size() * 2);
    }
}

bool isThere(HANDLE stream)
{
    SetLastError(NO_ERROR);
    return stream && stream != INVALID_HANDLE_VALUE &&
           (GetFileType(stream) != FILE_TYPE_UNKNOWN || GetLastError() == NO_ERROR);
}

void writeToConsole(HANDLE console, const QString &line)
{
    const auto *next = wide(line);
    auto left = DWORD(line.size());
    while (left > 0) {
        // The console of older systems takes no more than 64 kB at once.
        constexpr DWORD most = 8192;
        DWORD written = 0;
        if (!WriteConsoleW(console, next, left < most ? left : most, &written, nullptr) ||
            written == 0)
            return;
        next += written;
        left -= written;
    }
}

void writeToFile(HANDLE file, const QByteArray &bytes)
{
    const char *next = bytes.constData();
    auto left = DWORD(bytes.size());
    while (left > 0) {
        DWORD written = 0;
        if (!WriteFile(file, next, left, &written, nullptr) || written == 0)
            return;
        next += written;
        left -= written;
    }
}

/**
 * A program with windows is given no console by the system. One that was started from a console
 * borrows it for the line alone: while it holds it, an interrupt key pressed there would end it.
 */
void writeToParentsConsole(const QString &line)
{
    const bool attached = AttachConsole(ATTACH_PARENT_PROCESS);
    const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (console != INVALID_HANDLE_VALUE) {
        writeToConsole(console, line);
        CloseHandle(console);
    }
    if (attached)
        FreeConsole();
}

} // namespace

void ensureStandardStreams()
{
    // Streams that are closed stay so, since the system gives no file their place. What must not
    // be is a box of the system's own when a library is damaged or a disk is missing: in a run
    // without windows nobody would answer it.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}

fs::path fileArgument(int index, const char *const *)
{
    // The bytes of main() have lost what the system's code page doesn't know.
    fs::path argument;
    int count = 0;
    wchar_t **arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments && index < count)
        argument = arguments[index];
    LocalFree(arguments);
    return argument;
}

bool openForWriting(QFile &file, const fs::path &path)
{
    file.setFileName(QString::fromStdWString(path.native()));
    return !path.empty() && file.open(QIODevice::WriteOnly);
}

void printErrorLine(const QString &line)
{
    const QString whole = line + QLatin1Char('\n');
    const HANDLE stream = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (!isThere(stream))
        writeToParentsConsole(whole);
    else if (GetConsoleMode(stream, &mode))
        writeToConsole(stream, whole);
    else
        writeToFile(stream, whole.toLocal8Bit());
}

void showBlockingMessage(const QString &title, const QString &text)
{
    MessageBoxW(nullptr, wide(text), wide(title), MB_OK);
}

void pause(int milliseconds)
{
    Sleep(DWORD(milliseconds));
}

std::optional<std::u16string> biosText(BiosValue value)
{
    const BiosPlace place = placeOf(value);
    HKEY key = nullptr;
    static_assert(KEY_READ == 0x20019);
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, place.key, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return std::nullopt;
    Wide text{};
    DWORD size = valueBytes;
    const bool found = RegQueryValueExW(key, place.value, nullptr, nullptr,
                           reinterpret_cast<BYTE *>(text.data()), &size) == ERROR_SUCCESS;
    if (!found || !place.keepsKeyOpen)
        RegCloseKey(key);
    if (!found)
        return std::nullopt;
    return std::u16string(reinterpret_cast<const char16_t *>(text.data()));
}

std::string timeStampLine(std::int64_t secondsSince1970)
{
    const __time64_t time = secondsSince1970;
    const std::tm *local = _localtime64(&time);
    return local ? calendarLine(*local) : "\n";
}

std::filesystem::path hardwareErrorLog()
{
    const wchar_t *named = _wgetenv(L"VORN_LOG_DIR");
    return (named && *named ? fs::path(named) : fs::path(L"C:\\")) / L"HardwareErrorLog.log";
}

std::filesystem::path deviceServiceLog()
{
    return programFolder() / L"VornAuxService.log";
}

QStringList removableDrives()
{
    return {};
}

bool isRemovableDrivePath(const QString &)
{
    return false;
}

DynamicLibrary::DynamicLibrary(const char *windowsName)
    : handle(LoadLibraryW(wide(QString::fromLatin1(windowsName))))
{}

DynamicLibrary::~DynamicLibrary()
{
    if (handle)
        FreeLibrary(static_cast<HMODULE>(handle));
}

DynamicLibrary::Procedure DynamicLibrary::procedure(const char *name) const
{
    return handle ? reinterpret_cast<Procedure>(GetProcAddress(static_cast<HMODULE>(handle), name))
                  : nullptr;
}

} // namespace platform
