#include "virtualunit/lines/VirtualLine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace virtualunit::lines {

namespace {

constexpr double bitsOfACharacter = 10; // with start and stop bit

struct Speed {
    int baud;
    speed_t code;
};
constexpr Speed speeds[] = {{1200, B1200}, {2400, B2400}, {4800, B4800}, {9600, B9600},
    {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}};

speed_t codeOf(int baud)
{
    const auto *found = std::find_if(std::begin(speeds), std::end(speeds),
        [baud](const Speed &row) { return row.baud == baud; });
    return found == std::end(speeds) ? B0 : found->code;
}

[[noreturn]] void fail(const std::string &what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** What sampling bits at the wrong moments makes of bytes. */
std::string garbled(std::string_view bytes)
{
    std::string garbage;
    for (const char byte : bytes)
        garbage += char((static_cast<unsigned char>(byte) * 0x2FU + 0x51U) | 0x80U);
    return garbage;
}

} // namespace

VirtualLine::VirtualLine(int speed)
    : baud(speed)
{
    create();
}

VirtualLine::~VirtualLine()
{
    std::error_code ignored; // the folder may be gone already
    if (!link.empty() && std::filesystem::is_symlink(link, ignored))
        std::filesystem::remove(link, ignored);
    ::close(handle);
}

void VirtualLine::create()
{
    handle = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    std::array<char, 128> name{};
    if (handle < 0 || ::grantpt(handle) != 0 || ::unlockpt(handle) != 0 ||
        ::ptsname_r(handle, name.data(), name.size()) != 0)
        fail("No pseudo-terminal");
    path = name.data();
    // Raw and without echo from the start: an echo would come back to us before anybody opens.
    termios state{};
    if (::tcgetattr(handle, &state) != 0)
        fail("No state of a pseudo-terminal");
    ::cfmakeraw(&state);
    if (::tcsetattr(handle, TCSANOW, &state) != 0)
        fail("A pseudo-terminal refuses its state");
    // Only after the first close at the near end does the system tell whether somebody is there.
    if (!tidyUp())
        fail("A pseudo-terminal can't be opened");
    wasHeld = false;
}

/** A new pseudo-terminal under the old name. */
void VirtualLine::renew()
{
    ::close(handle);
    create();
    if (!link.empty())
        makeLink();
}

void VirtualLine::makeLink() const
{
    // Renamed into place, so that the name is never missing.
    auto fresh = link;
    fresh += ".new";
    std::filesystem::remove(fresh);
    std::filesystem::create_symlink(path, fresh);
    std::filesystem::rename(fresh, link);
}

void VirtualLine::setName(const std::filesystem::path &name)
{
    if (name == link)
        return;
    if (!link.empty())
        std::filesystem::remove(link);
    link.clear();
    if (name.empty())
        return;
    if (std::filesystem::exists(std::filesystem::symlink_status(name)) &&
        !std::filesystem::is_symlink(name))
        throw std::system_error(
            std::make_error_code(std::errc::file_exists), "In the way is " + name.string());
    link = name;
    makeLink();
}

/** After the near end has closed: no old bytes for whoever opens next, and no exclusive use that a
 *  crashed program left. False if that use keeps us out too. */
bool VirtualLine::tidyUp()
{
    const int near = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (near < 0)
        return false;
    ::tcflush(near, TCIFLUSH);
    ::ioctl(near, TIOCNXCL);
    ::close(near);
    return true;
}

bool VirtualLine::held()
{
    pollfd line{handle, 0, 0};
    const bool now = ::poll(&line, 1, 0) >= 0 && (line.revents & POLLHUP) == 0;
    const bool released = wasHeld && !now;
    wasHeld = now;
    if (released && !tidyUp())
        renew();
    return now;
}

bool VirtualLine::rightSpeed() const
{
    termios state{};
    return ::tcgetattr(handle, &state) == 0 && ::cfgetospeed(&state) == codeOf(baud);
}

std::string VirtualLine::receive()
{
    std::string bytes;
    std::array<char, 4096> piece{};
    for (;;) {
        const auto got = ::read(handle, piece.data(), piece.size());
        if (got <= 0)
            return rightSpeed() ? bytes : garbled(bytes);
        bytes.append(piece.data(), std::size_t(got));
    }
}

void VirtualLine::send(std::string_view bytes)
{
    queue += bytes;
}

void VirtualLine::transmit(double seconds)
{
    const bool anybody = held();
    if (queue.empty() || !anybody) {
        queue.clear();
        allowance = 0;
        return;
    }
    allowance += seconds * baud / bitsOfACharacter;
    const auto count = std::min(queue.size(), std::size_t(allowance));
    allowance -= double(count);
    const auto now = queue.substr(0, count);
    queue.erase(0, count);
    const auto onTheWire = rightSpeed() ? now : garbled(now);
    // What the near end has no room for is overrun, as in any receiver.
    if (::write(handle, onTheWire.data(), onTheWire.size()) < 0 && errno != EAGAIN && errno != EIO)
        fail("A pseudo-terminal can't be written");
}

} // namespace virtualunit::lines
