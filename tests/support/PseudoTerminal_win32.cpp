#include "tests/support/PseudoTerminal.h"

#include <QHash>

#include <cstring>

#include <winsock2.h>

namespace support {

namespace {

/** Free names of ports; the program's own defaults are left to those that ask for them. */
QStringList &freeNames()
{
    static QStringList names{QStringLiteral("COM9"), QStringLiteral("COM8"), QStringLiteral("COM7"),
        QStringLiteral("COM6"), QStringLiteral("COM5")};
    return names;
}

SOCKET connectedLine()
{
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    const SOCKET line = started ? socket(AF_INET, SOCK_STREAM, 0) : INVALID_SOCKET;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(qEnvironmentVariableIntValue("VORN_PTY_SERVER")));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(line, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        qFatal("no server of serial lines at VORN_PTY_SERVER");
    return line;
}

void sendAll(SOCKET line, const QByteArray &bytes)
{
    for (int sent = 0; sent < bytes.size();) {
        const int taken = ::send(line, bytes.constData() + sent, int(bytes.size()) - sent, 0);
        if (taken <= 0)
            qFatal("the server of serial lines is gone");
        sent += taken;
    }
}

QByteArray receiveAll(SOCKET line, int count)
{
    QByteArray bytes(count, '\0');
    for (int got = 0; got < count;) {
        const int more = ::recv(line, bytes.data() + got, count - got, 0);
        if (more <= 0)
            qFatal("the server of serial lines is gone");
        got += more;
    }
    return bytes;
}

template <typename Number>
QByteArray bytesOf(Number number)
{
    return QByteArray(reinterpret_cast<const char *>(&number), sizeof number);
}

/** See tests/wine/ptyserver.c. */
QByteArray ask(int handle, char question, const QByteArray &bytes = {}, int milliseconds = 0)
{
    const auto line = static_cast<SOCKET>(handle);
    sendAll(
        line, question + bytesOf(quint32(bytes.size())) + bytesOf(quint32(milliseconds)) + bytes);
    quint32 size = 0;
    std::memcpy(&size, receiveAll(line, sizeof size).constData(), sizeof size);
    return receiveAll(line, int(size));
}

QByteArray dosDevice(const QByteArray &portName)
{
    return portName.toLower();
}

} // namespace

void useNoOtherLines() {}

PseudoTerminal::PseudoTerminal()
    : handle(int(connectedLine()))
    , name(freeNames().isEmpty() ? QByteArray() : freeNames().takeLast().toLatin1())
{
    if (name.isEmpty())
        qFatal("too many serial lines");
    ask(handle, 'N', dosDevice(name));
}

PseudoTerminal::~PseudoTerminal()
{
    freeNames() << QString::fromLatin1(name);
    shutdown(static_cast<SOCKET>(handle), SD_SEND);
    // The end of the connection says that the names are gone.
    char byte = 0;
    ::recv(static_cast<SOCKET>(handle), &byte, 1, 0);
    closesocket(static_cast<SOCKET>(handle));
}

void PseudoTerminal::setName(const QString &portName)
{
    ask(handle, 'N', dosDevice(portName.toLatin1()));
}

int PseudoTerminal::speed() const
{
    return ask(handle, 'T').split(' ').value(0).toInt();
}

int PseudoTerminal::stopBits() const
{
    return ask(handle, 'T').split(' ').value(1).toInt();
}

void PseudoTerminal::setFormat(int baud, int stops)
{
    ask(handle, 'F', QByteArray::number(baud) + ' ' + QByteArray::number(stops));
}

bool PseudoTerminal::send(const QByteArray &bytes)
{
    return ask(handle, 'S', bytes) == "1";
}

QByteArray PseudoTerminal::receive(int count, int milliseconds)
{
    return ask(handle, 'R', bytesOf(quint32(count)), milliseconds);
}

void PseudoTerminal::hangUp()
{
    ask(handle, 'H');
}

} // namespace support
