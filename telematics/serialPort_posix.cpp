#include "telematics/serialPort_posix.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <thread>

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
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
    return length > 0 && std::size_t(length) < path.size();
}

/** A pseudo-terminal stays exclusive until its other end closes too, however its holder ended. */
bool isPseudoTerminal(int handle)
{
    struct stat status {
    };
    return ::fstat(handle, &status) == 0 && major(status.st_rdev) >= 136 &&
           major(status.st_rdev) <= 143;
}

/** Whether it is a line that nobody has for himself alone. Kernels before 3.8, and emulators, can't
 * tell; they have refused all but the super user already. */
bool isFreeLine(int handle)
{
    int heldByAnother = 0;
    if (::ioctl(handle, TIOCGEXCL, &heldByAnother) != 0)
        return ::isatty(handle) == 1;
    return heldByAnother == 0;
}

/** Makes that open line this caller's alone. The lock is for our own kind, and goes with its
 * holder; the exclusiveness is for everybody, but lets the super user pass, who has to ask for it.
 */
bool holdAlone(int handle)
{
    return ::flock(handle, LOCK_EX | LOCK_NB) == 0 && isFreeLine(handle) &&
           (isPseudoTerminal(handle) || ::ioctl(handle, TIOCEXCL) == 0);
}

/** The descriptor of that serial line for this caller alone, or -1. */
int openExclusively(const char *path)
{
    const int handle = ::open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (handle == invalidHandle || holdAlone(handle))
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
    if (code < 0 || code >= std::int32_t(std::size(speeds)) || speeds[code] == none)
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
    if (code < 0 || code >= std::int32_t(std::size(sizes)))
        return false;
    replaceFlags(state.c_cflag, CSIZE, sizes[code]);
    return true;
}

bool storeParity(termios &state, std::int32_t code)
{
    constexpr tcflag_t parities[] = {0, PARENB, PARENB | PARODD};
    if (code < 0 || code >= std::int32_t(std::size(parities)))
        return false;
    // Left in, CMSPAR would turn even and odd into space and mark.
    replaceFlags(state.c_cflag, PARENB | PARODD | CMSPAR, parities[code]);
    return true;
}

bool storeStopBits(termios &state, std::int32_t code)
{
    constexpr tcflag_t stops[] = {0, CSTOPB};
    if (code < 0 || code >= std::int32_t(std::size(stops)))
        return false;
    replaceFlags(state.c_cflag, CSTOPB, stops[code]);
    return true;
}

/** No handshake, and bytes as they are on the wire. INPCK and all else stays as found. */
void storeTransparency(termios &state)
{
    state.c_iflag &=
        ~tcflag_t(IXON | IXOFF | IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IUCLC);
    state.c_oflag &= ~tcflag_t(OPOST);
    state.c_lflag &= ~tcflag_t(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
    // CLOCAL: losing the carrier must not hang up the line.
    replaceFlags(state.c_cflag, tcflag_t(CRTSCTS), CLOCAL | CREAD);
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

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/** Milliseconds until then, rounded up; 0 if it has passed. */
int millisecondsUntil(Clock::time_point end)
{
    const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
    return int(std::max(left, milliseconds::zero()).count());
}

/** Waits until bytes can be read. False at the end, or when the signal of a stop comes. A line that
 *  is gone, or none (-1), is waited for all the same: callers turn in loops that only the silence
 *  slows down. */
bool waitForBytes(int handle, int stopSignal, Clock::time_point end)
{
    pollfd waitedFor[] = {{handle, POLLIN, 0}, {stopSignal, POLLIN, 0}}; // but for what is -1
    pollfd &line = waitedFor[0];
    const pollfd &stop = waitedFor[1];
    for (;;) {
        const int wait = millisecondsUntil(end);
        const int ready = ::poll(waitedFor, std::size(waitedFor), wait);
        if (ready > 0 && stop.revents != 0)
            return false;
        if (ready > 0 && (line.revents & POLLIN) != 0)
            return true;
        if (ready > 0)
            line.fd = invalidHandle;
        if (ready < 0 && errno != EINTR)
            std::this_thread::sleep_until(end);
        if (ready <= 0 && wait == 0)
            return false;
    }
}

/** At most so many bytes of what is there, waiting for the first one; 0 after the silence or when
 *  the signal of a stop comes. */
std::uint32_t readSome(int handle, char *buffer, std::uint32_t count, int stopSignal)
{
    const auto end = Clock::now() + milliseconds(serialSilence);
    for (;;) {
        const auto got = ::read(handle, buffer, count);
        if (got > 0)
            return std::uint32_t(got);
        if (got < 0 && errno == EINTR)
            continue;
        const bool nothingYet = got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
        if (!waitForBytes(nothingYet ? handle : invalidHandle, stopSignal, end))
            return 0;
    }
}

bool isStopped(const SerialStop *stop)
{
    return stop != nullptr && stop->isRequested();
}

// The system tells of room that a reader made, and not of what it made itself when it passed bytes
// on, nor of bytes that have gone out; so who waits looks again from time to time.
constexpr int millisecondsForRoom = 100;
constexpr milliseconds forBytesToGo(2);

/** At most so many bytes, waiting for room; 0 if the line is gone or stands still. */
std::uint32_t writeSome(int handle, const char *bytes, std::uint32_t count)
{
    const auto end = Clock::now() + milliseconds(serialStandstill);
    for (;;) {
        const auto taken = ::write(handle, bytes, count);
        if (taken >= 0)
            return std::uint32_t(taken);
        if (errno == EINTR)
            continue;
        if ((errno != EAGAIN && errno != EWOULDBLOCK) || Clock::now() >= end)
            return 0;
        pollfd line{handle, POLLOUT, 0};
        const int ready = ::poll(&line, 1, millisecondsForRoom);
        if (ready > 0 && (line.revents & POLLOUT) == 0)
            return 0;
        if (ready < 0 && errno != EINTR)
            return 0;
    }
}

/** Waits until what was written is out; false if the line is gone or stands still. */
bool waitUntilSent(int handle)
{
    int before = 0;
    if (::ioctl(handle, TIOCOUTQ, &before) != 0)
        return false;
    auto end = Clock::now() + milliseconds(serialStandstill);
    for (int waiting = before; waiting > 0; before = waiting) {
        std::this_thread::sleep_for(forBytesToGo);
        if (::ioctl(handle, TIOCOUTQ, &waiting) != 0)
            return false;
        if (waiting < before)
            end = Clock::now() + milliseconds(serialStandstill);
        else if (Clock::now() >= end)
            return false;
    }
    // That was the system's queue, for which this call would wait without end. What is left are
    // some bytes in the hardware.
    int result = 0;
    do {
        result = ::tcdrain(handle);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

// Without a descriptor to spare, a waiting read is not woken and keeps its silence.
SerialStop::SerialStop()
    : wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{}

SerialStop::~SerialStop()
{
    if (wakeUp != invalidHandle)
        ::close(int(wakeUp));
}

void SerialStop::request()
{
    requested.store(true, std::memory_order_relaxed);
    ::eventfd_write(int(wakeUp), 1); // fails if so many have come before
}

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
    if (count == 0)
        return SERIAL_OK;
    const auto *next = static_cast<const char *>(bytes);
    while (count > 0) {
        const auto taken = writeSome(port->handle, next, count);
        if (taken == 0)
            return SERIAL_NO_LINE;
        next += taken;
        count -= taken;
    }
    return waitUntilSent(port->handle) ? SERIAL_OK : SERIAL_NO_LINE;
}

std::int32_t serialRead(SerialPort *port, void *buffer, std::uint32_t count, const SerialStop *stop)
{
    if (!isUsable(port))
        return SERIAL_NO_LINE;
    const int stopSignal = stop ? int(stop->signal()) : invalidHandle;
    auto *next = static_cast<char *>(buffer);
    while (count > 0) {
        if (isStopped(stop))
            return SERIAL_STOPPED;
        const auto got = readSome(port->handle, next, count, stopSignal);
        if (got == 0 && !isStopped(stop))
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
