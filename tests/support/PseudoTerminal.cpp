#include "tests/support/PseudoTerminal.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace support {

namespace {

bool waitFor(int handle, short event, int milliseconds)
{
    pollfd line{handle, event, 0};
    return ::poll(&line, 1, std::max(milliseconds, 0)) > 0 && (line.revents & event) != 0;
}

} // namespace

PseudoTerminal::PseudoTerminal()
    : handle(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK))
{
    if (handle < 0 || ::grantpt(handle) != 0 || ::unlockpt(handle) != 0)
        qFatal("no pseudo-terminal");
    name = ::ptsname(handle);
    termios raw = state();
    ::cfmakeraw(&raw);
    ::cfsetspeed(&raw, B38400);
    setState(raw);
}

PseudoTerminal::~PseudoTerminal()
{
    hangUp();
}

termios PseudoTerminal::state() const
{
    termios state{};
    if (::tcgetattr(handle, &state) != 0)
        qFatal("no state of the pseudo-terminal");
    return state;
}

void PseudoTerminal::setState(const termios &state)
{
    if (::tcsetattr(handle, TCSANOW, &state) != 0)
        qFatal("pseudo-terminal refuses the state");
}

bool PseudoTerminal::send(const QByteArray &bytes)
{
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const auto taken = ::write(
            handle, bytes.constData() + sent, static_cast<std::size_t>(bytes.size() - sent));
        if (taken > 0)
            sent += taken;
        else if (!waitFor(handle, POLLOUT, 5000))
            return false;
    }
    return true;
}

QByteArray PseudoTerminal::receive(int count, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    QByteArray bytes;
    while (bytes.size() < count && waitFor(handle, POLLIN, milliseconds - int(timer.elapsed()))) {
        QByteArray piece(count - int(bytes.size()), '\0');
        const auto got = ::read(handle, piece.data(), static_cast<std::size_t>(piece.size()));
        if (got <= 0)
            break;
        bytes += piece.left(int(got));
    }
    return bytes;
}

QByteArray PseudoTerminal::receiveAll(int pause)
{
    QByteArray bytes;
    for (;;) {
        const QByteArray piece = receive(1, pause);
        if (piece.isEmpty())
            return bytes;
        bytes += piece;
    }
}

void PseudoTerminal::hangUp()
{
    if (handle >= 0)
        ::close(handle);
    handle = -1;
}

} // namespace support
