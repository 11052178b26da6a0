#include "tests/support/programs/FileFaults_posix.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/input.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace support {

namespace {

constexpr auto slowness = std::chrono::milliseconds(150); // longer than a reading may take
constexpr std::size_t mostDescriptors = 4096;

std::atomic<FaultOf> faultOf = nullptr;
std::array<std::atomic<FileFault>, mostDescriptors> faultOfDescriptor;

/** Where the bed is; empty without one. */
std::string_view bed()
{
    static const char *const root = std::getenv("UMOCKDEV_DIR");
    return root ? root : "";
}

/** As the machine has it. Empty for what is none of the machine's. */
std::string_view onMachine(std::string_view path)
{
    if (!bed().empty() && path.starts_with(bed()))
        path.remove_prefix(bed().size());
    for (const char *part : {"/sys/", "/etc/vornaux", "/etc/os-release", "/proc/device-tree",
             "/proc/sys/", "/dev/gpiochip", "/dev/input/", "/dev/rfkill"}) {
        if (path.starts_with(part))
            return path;
    }
    return {};
}

FileFault faultAt(const char *name)
{
    const FaultOf fault = faultOf;
    const auto path = onMachine(name);
    if (path.empty())
        return FileFault::None;
    // Nodes of this machine, which the bed hasn't got, are out of bounds.
    if (path.starts_with("/dev/") && !bed().empty()) {
        struct stat found = {};
        if (::stat((std::string(bed()) += path).c_str(), &found) != 0)
            return FileFault::Gone;
    }
    return fault ? fault(path) : FileFault::None;
}

/** Error number of opening a file; 0 for none. */
int refusal(FileFault fault, int flags)
{
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    switch (fault) {
    case FileFault::Gone:
        return ENOENT;
    case FileFault::NoRights:
        return EACCES;
    case FileFault::ReadOnly:
        return writes ? EROFS : 0;
    default:
        return 0;
    }
}

/** The function that ours stands before. */
template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

using Open = int(const char *, int, ...);

int openSpoilt(Open *open, const char *name, int flags, mode_t mode)
{
    const FileFault fault = faultAt(name);
    if (const int number = refusal(fault, flags)) {
        errno = number;
        return -1;
    }
    // What a faulty file holds stays in the bed.
    const bool keeps = fault != FileFault::None && fault != FileFault::ReadOnly;
    const int descriptor = open(name, keeps ? flags & ~(O_TRUNC | O_CREAT) : flags, mode);
    if (descriptor >= 0 && std::size_t(descriptor) < mostDescriptors)
        faultOfDescriptor[std::size_t(descriptor)] = fault;
    return descriptor;
}

FileFault faultOn(int descriptor)
{
    return descriptor >= 0 && std::size_t(descriptor) < mostDescriptors
               ? faultOfDescriptor[std::size_t(descriptor)].load()
               : FileFault::None;
}

/** What failing and busy files answer; 0 for others. */
int errorOn(FileFault fault)
{
    if (fault == FileFault::Failing)
        return EIO;
    return fault == FileFault::Busy ? EAGAIN : 0;
}

ssize_t readSpoilt(FileFault fault, int descriptor, void *buffer, std::size_t size)
{
    static auto *const real = next<decltype(::read)>("read");
    if (const int number = errorOn(fault)) {
        errno = number;
        return -1;
    }
    if (fault == FileFault::Empty)
        return 0;
    if (fault == FileFault::Slow)
        std::this_thread::sleep_for(slowness);
    if (fault != FileFault::Nonsense)
        return real(descriptor, buffer, size);
    // Once, then its end, which the bed's own file has after its first byte too.
    faultOfDescriptor[std::size_t(descriptor)] = FileFault::Empty;
    const auto count = std::min(size, nonsense.size());
    std::memcpy(buffer, nonsense.data(), count);
    return ssize_t(count);
}

/** A tone device: what was sent to it last, which the kernel would tell. */
std::atomic<int> sounding = 0;

/** A mode stands there for new files alone. */
mode_t modeOf(int flags, va_list &rest)
{
    return (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(rest, mode_t) : 0;
}

} // namespace

void setFileFaults(FaultOf fault)
{
    faultOf = fault;
}

} // namespace support

// The names of the system, which the loader finds in the program before all libraries.
extern "C" {

int open(const char *name, int flags, ...)
{
    static auto *const real = support::next<support::Open>("open");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = support::modeOf(flags, rest);
    va_end(rest);
    return support::openSpoilt(real, name, flags, mode);
}

int open64(const char *name, int flags, ...)
{
    static auto *const real = support::next<support::Open>("open64");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = support::modeOf(flags, rest);
    va_end(rest);
    return support::openSpoilt(real, name, flags, mode);
}

int close(int descriptor)
{
    static auto *const real = support::next<decltype(::close)>("close");
    // Whatever has this number next is none of ours.
    if (support::faultOn(descriptor) != support::FileFault::None)
        support::faultOfDescriptor[std::size_t(descriptor)] = support::FileFault::None;
    return real(descriptor);
}

ssize_t read(int descriptor, void *buffer, std::size_t size)
{
    return support::readSpoilt(support::faultOn(descriptor), descriptor, buffer, size);
}

ssize_t write(int descriptor, const void *bytes, std::size_t size)
{
    static auto *const real = support::next<decltype(::write)>("write");
    const auto fault = support::faultOn(descriptor);
    if (const int number = support::errorOn(fault)) {
        errno = number;
        return -1;
    }
    const auto *event = static_cast<const input_event *>(bytes);
    if (size == sizeof *event && event->type == EV_SND && event->code == SND_TONE)
        support::sounding = event->value;
    return fault == support::FileFault::Empty ? 0 : real(descriptor, bytes, size);
}

int ioctl(int descriptor, unsigned long request, ...)
{
    static auto *const real = support::next<decltype(::ioctl)>("ioctl");
    va_list rest;
    va_start(rest, request);
    void *const argument = va_arg(rest, void *);
    va_end(rest);
    const auto asked = request & ~(std::uint64_t(_IOC_SIZEMASK) << _IOC_SIZESHIFT);
    if (asked != EVIOCGSND(0))
        return real(descriptor, request, argument);
    if (const int number = support::errorOn(support::faultOn(descriptor))) {
        errno = number;
        return -1;
    }
    std::memset(argument, 0, _IOC_SIZE(request));
    if (support::sounding != 0)
        static_cast<unsigned char *>(argument)[SND_TONE / CHAR_BIT] |= 1U << (SND_TONE % CHAR_BIT);
    return 0;
}

DIR *opendir(const char *name)
{
    static auto *const real = support::next<decltype(::opendir)>("opendir");
    if (const int number = support::refusal(support::faultAt(name), O_RDONLY)) {
        errno = number;
        return nullptr;
    }
    return real(name);
}

int access(const char *name, int mode)
{
    static auto *const real = support::next<decltype(::access)>("access");
    const auto fault = support::faultAt(name);
    const int number = fault == support::FileFault::NoRights && mode == F_OK
                           ? 0
                           : support::refusal(fault, mode & W_OK ? O_RDWR : O_RDONLY);
    if (number != 0) {
        errno = number;
        return -1;
    }
    return real(name, mode);
}

ssize_t readlink(const char *name, char *buffer, std::size_t size)
{
    static auto *const real = support::next<decltype(::readlink)>("readlink");
    if (support::faultAt(name) == support::FileFault::Gone) {
        errno = ENOENT;
        return -1;
    }
    return real(name, buffer, size);
}
}
