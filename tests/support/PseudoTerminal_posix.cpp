#include "tests/support/PseudoTerminal.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace support {

namespace {

bool waitFor(int handle, short event, int milliseconds)
{
    pollfd line{handle, event, 0};
    return ::poll(&line, 1, std::max(milliseconds, 0)) > 0 && (line.revents & event) != 0;
}

constexpr struct {
    speed_t code;
    int baud;
} speeds[] = {{B1200, 1200}, {B2400, 2400}, {B4800, 4800}, {B9600, 9600}, {B19200, 19200},
    {B38400, 38400}, {B57600, 57600}, {B115200, 115200}};

termios stateOf(int handle)
{
    termios state{};
    if (::tcgetattr(handle, &state) != 0)
        qFatal("no state of the pseudo-terminal");
    return state;
}

/** Where the program looks for lines. */
QDir namesFolder()
{
    static const QTemporaryDir folder;
    qputenv("VORN_SERIAL_DIR", QFile::encodeName(folder.path()));
    return QDir(folder.path());
}

} // namespace

void useNoOtherLines()
{
    namesFolder();
}

PseudoTerminal::PseudoTerminal()
    : handle(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK))
{
    if (handle < 0 || ::grantpt(handle) != 0 || ::unlockpt(handle) != 0)
        qFatal("no pseudo-terminal");
    name = ::ptsname(handle);
    termios raw = stateOf(handle);
    ::cfmakeraw(&raw);
    ::cfsetspeed(&raw, B38400);
    ::tcsetattr(handle, TCSANOW, &raw);
}

PseudoTerminal::~PseudoTerminal()
{
    hangUp();
    if (!link.isEmpty())
        QFile::remove(link);
}

void PseudoTerminal::setName(const QString &portName)
{
    link = namesFolder().filePath(portName);
    QFile::remove(link);
    if (!QFile::link(QFile::decodeName(name), link))
        qFatal("no name for the pseudo-terminal");
}

int PseudoTerminal::speed() const
{
    const termios state = stateOf(handle);
    for (const auto &row : speeds) {
        if (row.code == ::cfgetospeed(&state) && row.code == ::cfgetispeed(&state))
            return row.baud;
    }
    return -1;
}

int PseudoTerminal::stopBits() const
{
    return (stateOf(handle).c_cflag & CSTOPB) != 0 ? 2 : 1;
}

void PseudoTerminal::setFormat(int baud, int stops)
{
    termios state = stateOf(handle);
    for (const auto &row : speeds) {
        if (row.baud == baud)
            ::cfsetspeed(&state, row.code);
    }
    state.c_cflag &= ~tcflag_t(CSTOPB);
    state.c_cflag |= stops == 2 ? tcflag_t(CSTOPB) : 0;
    ::tcsetattr(handle, TCSANOW, &state);
}

bool PseudoTerminal::send(const QByteArray &bytes)
{
    qsizetype sent = 0;
    QElapsedTimer timer;
    timer.start();
    while (sent < bytes.size()) {
        const auto taken =
            ::write(handle, bytes.constData() + sent, std::size_t(bytes.size() - sent));
        if (taken > 0) {
            sent += taken;
            timer.start();
        } else if (timer.hasExpired(5000)) {
            return false;
        } else {
            // The system doesn't tell of all room, see the serial layer.
            waitFor(handle, POLLOUT, 100);
        }
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
        const auto got = ::read(handle, piece.data(), std::size_t(piece.size()));
        if (got <= 0)
            break;
        bytes += piece.left(int(got));
    }
    return bytes;
}

void PseudoTerminal::hangUp()
{
    if (handle >= 0)
        ::close(handle);
    handle = -1;
}

} // namespace support
