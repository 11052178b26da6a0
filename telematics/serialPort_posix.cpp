#include "telematics/serialPort_posix.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <memory>
#include <new>

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using Path = std::array<char, PATH_MAX>;

constexpr int invalidHandle = -1;

/** The number n of a name "COMn", 1 to 999; 0 for any other name. */
int comNumber(const char *name)
{
    if (std::strncmp(name, "COM", 3) != 0)
        return 0;
    const char *digits = name + 3;
    const auto length = std::strspn(digits, "0123456789");
    if (length < 1 || length > 3 || digits[length] != '\0' || digits[0] == '0')
        return 0;
    return std::atoi(digits);
}

/** Where the line of that name lies in the file system; false if the way is too long. */
bool findLine(const char *name, Path &path)
{
    const int number = comNumber(name);
    const char *folder = std::getenv("VORN_SERIAL_DIR");
    int length = 0;
    if (name[0] == '/')
        length = std::snprintf(path.data(), path.size(), "%s", name);
    else if (number > 0 && folder && folder[0] != '\0')
        length = std::snprintf(path.data(), path.size(), "%s/%s", folder, name);
    else if (number > 0)
        length = std::snprintf(path.data(), path.size(), "/dev/ttyS%d", number - 1);
    else
        length = std::snprintf(path.data(), path.size(), "/dev/%s", name);
    return length > 0 && static_cast<std::size_t>(length) < path.size();
}

/** The descriptor of that serial line for this caller alone, or -1. */
int openExclusively(const char *path)
{
    const int handle = ::open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (handle == invalidHandle)
        return invalidHandle;
    // What is no serial line knows no TIOCEXCL. The lock refuses also root, whom that lets pass.
    const bool ours = ::flock(handle, LOCK_EX | LOCK_NB) == 0 && ::ioctl(handle, TIOCEXCL) == 0;
    if (ours)
        return handle;
    ::close(handle);
    return invalidHandle;
}

bool setLineState(int handle, const termios &state)
{
    int result = 0;
    do {
        result = ::tcsetattr(handle, TCSANOW, &state);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool isOpen(const SerialPort *port)
{
    return port != nullptr && port->handle != invalidHandle;
}

bool isUsable(const SerialPort *port)
{
    return isOpen(port) && port->configured != 0;
}

bool storeBaud(termios &state, std::int32_t code)
{
    constexpr speed_t none = B0;
    constexpr speed_t speeds[] = {
        B1200, none, B2400, B4800, B9600, B19200, B38400, B57600, B115200};
    if (code < 0 || code >= static_cast<std::int32_t>(std::size(speeds)) || speeds[code] == none)
        return false;
    return ::cfsetispeed(&state, speeds[code]) == 0 && ::cfsetospeed(&state, speeds[code]) == 0;
}

void replaceFlags(tcflag_t &flags, tcflag_t mask, tcflag_t value)
{
    flags = (flags & ~mask) | value;
}

bool storeDataBits(termios &state, std::int32_t code)
{
    constexpr tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
    if (code < 0 || code >= static_cast<std::int32_t>(std::size(sizes)))
        return false;
    replaceFlags(state.c_cflag, CSIZE, sizes[code]);
    return true;
}

bool storeParity(termios &state, std::int32_t code)
{
    constexpr tcflag_t parities[] = {0, PARENB, PARENB | PARODD};
    if (code < 0 || code >= static_cast<std::int32_t>(std::size(parities)))
        return false;
    // Left in, CMSPAR would turn even and odd into space and mark.
    replaceFlags(state.c_cflag, PARENB | PARODD | CMSPAR, parities[code]);
    return true;
}

bool storeStopBits(termios &state, std::int32_t code)
{
    constexpr tcflag_t stops[] = {0, CSTOPB};
    if (code < 0 || code >= static_cast<std::int32_t>(std::size(stops)))
        return false;
    replaceFlags(state.c_cflag, CSTOPB, stops[code]);
    return true;
}

/** No handshake, and bytes as they are on the wire. INPCK and all else stays as found. */
void storeTransparency(termios &state)
{
    state.c_iflag &= ~static_cast<tcflag_t>(
        IXON | IXOFF | IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IUCLC);
    state.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    state.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
    // CLOCAL: losing the carrier must not hang up the line.
    replaceFlags(state.c_cflag, static_cast<tcflag_t>(CRTSCTS), CLOCAL | CREAD);
    // With VMIN 0 an idle line could not be told from one that is gone.
    state.c_cc[VMIN] = 1;
    state.c_cc[VTIME] = 0;
}

/** The system calls it a success when a part of the state was taken: the speed must be. */
bool setWorkingState(const SerialPort *port)
{
    termios taken{};
    return setLineState(port->handle, port->workingState) &&
           ::tcgetattr(port->handle, &taken) == 0 &&
           ::cfgetospeed(&taken) == ::cfgetospeed(&port->workingState);
}

constexpr long nanosecondsPerMillisecond = 1'000'000;
constexpr long nanosecondsPerSecond = 1'000'000'000;

/** The time of serialSilence from now on a clock that nobody sets. */
timespec endOfSilence()
{
    timespec end{};
    ::clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += serialSilence / 1000;
    end.tv_nsec += serialSilence % 1000 * nanosecondsPerMillisecond;
    if (end.tv_nsec >= nanosecondsPerSecond) {
        end.tv_nsec -= nanosecondsPerSecond;
        ++end.tv_sec;
    }
    return end;
}

/** Milliseconds until then, rounded up; 0 if it has passed. */
int millisecondsUntil(const timespec &end)
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const auto nanoseconds =
        static_cast<long long>(end.tv_sec - now.tv_sec) * nanosecondsPerSecond +
        (end.tv_nsec - now.tv_nsec);
    if (nanoseconds <= 0)
        return 0;
    return static_cast<int>(
        (nanoseconds + nanosecondsPerMillisecond - 1) / nanosecondsPerMillisecond);
}

void sleepUntil(const timespec &end)
{
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}

/** Waits until bytes can be read. False at the end of the silence, which a line that is gone keeps
 *  too: its callers turn in loops that only the silence slows down. */
bool waitForBytes(int handle, const timespec &end)
{
    for (;;) {
        pollfd line{handle, POLLIN, 0};
        const int wait = millisecondsUntil(end);
        const int ready = ::poll(&line, 1, wait);
        if (ready > 0 && (line.revents & POLLIN) != 0)
            return true;
        if (ready > 0 || (ready < 0 && errno != EINTR)) {
            sleepUntil(end);
            return false;
        }
        if (wait == 0)
            return false;
    }
}

/** At most so many bytes of what is there, waiting for the first one; 0 after the silence. */
std::uint32_t readSome(int handle, char *buffer, std::uint32_t count)
{
    const timespec end = endOfSilence();
    for (;;) {
        const auto got = ::read(handle, buffer, count);
        if (got > 0)
            return static_cast<std::uint32_t>(got);
        if (got < 0 && errno == EINTR)
            continue;
        if (got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
            sleepUntil(end);
            return 0;
        }
        if (!waitForBytes(handle, end))
            return 0;
    }
}

constexpr int millisecondsForRoom = 100;

/** At most so many bytes, waiting for room without end; 0 if the line takes no more. */
std::uint32_t writeSome(int handle, const char *bytes, std::uint32_t count)
{
    for (;;) {
        const auto taken = ::write(handle, bytes, count);
        if (taken >= 0)
            return static_cast<std::uint32_t>(taken);
        if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // The system tells of room that a reader made, and not of what it made itself when it
            // passed bytes on; so who waits looks again from time to time.
            pollfd line{handle, POLLOUT, 0};
            const int ready = ::poll(&line, 1, millisecondsForRoom);
            if (ready > 0 && (line.revents & POLLOUT) == 0)
                return 0;
            if (ready < 0 && errno != EINTR)
                return 0;
        } else if (errno != EINTR) {
            return 0;
        }
    }
}

} // namespace

SerialPort *serialOpen(const char *name)
{
    Path path;
    if (!name || !findLine(name, path))
        return nullptr;
    std::unique_ptr<SerialPort> port(new (std::nothrow) SerialPort{});
    if (!port)
        return nullptr;
    port->handle = openExclusively(path.data());
    if (port->handle == invalidHandle)
        return nullptr;
    // The system's queues hold 4096 bytes each way already, and the silence is ours to keep.
    ::tcgetattr(port->handle, &port->savedState);
    ::tcgetattr(port->handle, &port->workingState);
    serialPurge(port.get());
    return port.release();
}

std::int32_t serialConfigure(SerialPort *port, std::int32_t baudCode, std::int32_t dataBitsCode,
    std::int32_t parityCode, std::int32_t stopBitsCode)
{
    if (!isOpen(port))
        return SERIAL_NO_LINE;
    // Each code is stored before the next one is looked at; the line itself waits for the end.
    auto &state = port->workingState;
    if (!storeBaud(state, baudCode))
        return SERIAL_BAUD_REFUSED;
    if (!storeDataBits(state, dataBitsCode))
        return SERIAL_DATA_BITS_REFUSED;
    if (!storeParity(state, parityCode))
        return SERIAL_PARITY_REFUSED;
    if (!storeStopBits(state, stopBitsCode))
        return SERIAL_STOP_BITS_REFUSED;
    storeTransparency(state);
    serialPurge(port);
    if (!setWorkingState(port))
        return SERIAL_NO_LINE;
    port->configured = 1;
    port->baudCode = baudCode;
    port->dataBitsCode = dataBitsCode;
    port->parityCode = parityCode;
    port->stopBitsCode = stopBitsCode;
    return SERIAL_OK;
}

std::int32_t serialWrite(SerialPort *port, const void *bytes, std::uint32_t count)
{
    if (!isUsable(port))
        return SERIAL_NO_LINE;
    const auto *next = static_cast<const char *>(bytes);
    while (count > 0) {
        const auto taken = writeSome(port->handle, next, count);
        if (taken == 0)
            return SERIAL_NO_LINE;
        next += taken;
        count -= taken;
    }
    return SERIAL_OK;
}

std::int32_t serialRead(SerialPort *port, void *buffer, std::uint32_t count)
{
    if (!isUsable(port))
        return SERIAL_NO_LINE;
    auto *next = static_cast<char *>(buffer);
    while (count > 0) {
        const auto got = readSome(port->handle, next, count);
        if (got == 0)
            return SERIAL_TIMED_OUT;
        next += got;
        count -= got;
    }
    return SERIAL_OK;
}

void serialPurge(SerialPort *port)
{
    // Only the sending side: what the other end said before it was asked is still wanted.
    if (isOpen(port))
        ::tcflush(port->handle, TCOFLUSH);
}

void serialClose(SerialPort *port)
{
    if (!isOpen(port))
        return;
    serialPurge(port);
    setLineState(port->handle, port->savedState);
    // A pseudo-terminal would stay exclusive until its other end closes too.
    ::ioctl(port->handle, TIOCNXCL);
    ::close(port->handle);
    delete port;
}
