#include "platform/platform.h"

#include "platform/calendarLine.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QStorageInfo>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

/** The folder that an environment variable names, else the usual one. */
fs::path folder(const char *variable, const char *usual)
{
    const char *named = std::getenv(variable);
    return named && *named ? named : usual;
}

fs::path programFolder()
{
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

/** Found by one of its functions, since the library may have been put in by the loader's path. */
fs::path deviceLibraryFolder()
{
    Dl_info library{};
    void *function = dlsym(RTLD_DEFAULT, "deviceErrorText");
    if (!function || !dladdr(function, &library) || !library.dli_fname)
        return {};
    return fs::path(library.dli_fname).parent_path();
}

std::string libraryFile(const std::string &windowsName)
{
    return "lib" + windowsName.substr(0, windowsName.rfind('.')) + ".so";
}

} // namespace

void ensureStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // The lowest free number is given out first, so this opens the very stream that is closed.
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF && open("/dev/null", O_RDWR) == -1)
            return;
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

fs::path fileArgument(int index, const char *const *arguments)
{
    return arguments[index];
}

bool openForWriting(QFile &file, const fs::path &path)
{
    int handle = -1;
    do {
        handle = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    } while (handle == -1 && errno == EINTR);
    return handle != -1 && file.open(handle, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
}

void printErrorLine(const QString &line)
{
    const QByteArray bytes = line.toLocal8Bit() + '\n';
    const char *next = bytes.constData();
    auto left = std::size_t(bytes.size());
    while (left > 0) {
        const ssize_t written = write(STDERR_FILENO, next, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        next += written;
        left -= std::size_t(written);
    }
}

void showBlockingMessage(const QString &title, const QString &text)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        printErrorLine(text);
        return;
    }
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::Ok);
    box.exec();
}

void pause(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::optional<std::u16string> biosText(BiosValue value)
{
    // Longer values don't fit into the 255 bytes of UTF-16 that callers have room for.
    constexpr std::size_t longest = 126;

    const char *name = value == BiosValue::BaseBoardProduct ? "board_name" : "bios_version";
    const fs::path file = folder("VORN_DMI_DIR", "/sys/class/dmi/id") / name;
    std::error_code error;
    if (!fs::is_regular_file(file, error))
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::array<char, longest + sizeof "\r\n"> bytes{};
    stream.read(bytes.data(), bytes.size());
    if (!stream.is_open() || stream.bad())
        return std::nullopt;

    std::string text(bytes.data(), std::size_t(stream.gcount()));
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
        if (!text.empty() && text.back() == '\r')
            text.pop_back();
    }
    if (text.size() > longest)
        return std::nullopt;
    std::u16string wide;
    for (const char character : text.substr(0, text.find('\0')))
        wide += char16_t(static_cast<unsigned char>(character));
    return wide;
}

std::string timeStampLine(std::int64_t secondsSince1970)
{
    const auto time = std::time_t(secondsSince1970);
    std::tm local{};
    tzset();
    return localtime_r(&time, &local) ? calendarLine(local) : "\n";
}

std::filesystem::path hardwareErrorLog()
{
    return folder("VORN_LOG_DIR", "/var/log") / "HardwareErrorLog.log";
}

std::filesystem::path deviceServiceLog()
{
    return programFolder() / "VornAuxService.log";
}

QStringList removableDrives()
{
    QStringList drives;
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes()) {
        if (isRemovableDrivePath(volume.rootPath()))
            drives << volume.rootPath();
    }
    drives.sort();
    return drives;
}

bool isRemovableDrivePath(const QString &path)
{
    return path.startsWith(QStringLiteral("/media/")) ||
           path.startsWith(QStringLiteral("/run/media/"));
}

DynamicLibrary::DynamicLibrary(const char *windowsName)
{
    const std::string file = libraryFile(windowsName);
    for (const fs::path &place : {programFolder(), deviceLibraryFolder()}) {
        if (!handle && !place.empty())
            handle = dlopen((place / file).c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    if (!handle)
        handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

DynamicLibrary::~DynamicLibrary()
{
    if (handle)
        dlclose(handle);
}

DynamicLibrary::Procedure DynamicLibrary::procedure(const char *name) const
{
    return handle ? reinterpret_cast<Procedure>(dlsym(handle, name)) : nullptr;
}

} // namespace platform
