#pragma once

#include <QByteArray>
#include <QString>

namespace support {

/**
 * A serial line without hardware: the kernel's pseudo-terminal. The test holds this end, the
 * program opens the other one by path(). Starts in raw mode without echo at 38400 baud. Ends the
 * test program if the system has no pseudo-terminal left.
 *
 * For a test under wine it is a server on the machine below that holds this end, and the line is a
 * COM port of the wine world; see tests/wine/ptyserver.c.
 */
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    QByteArray path() const { return name; }
    /** Gives the line one more name, such as "COM3", until it goes. */
    void setName(const QString &portName);

    /** Speed in baud and stop bits, as either end has set them last. */
    int speed() const;
    int stopBits() const;
    void setFormat(int baud, int stops);

    /** Sends all bytes; false if the line took no more for 5 s. */
    bool send(const QByteArray &bytes);
    /** What the other end wrote, once so many bytes are there or the time is over. */
    QByteArray receive(int count, int milliseconds = 5000);
    /** What has been written by now and, without a pause of so many milliseconds, goes on coming.
     */
    QByteArray receiveAll(int pause = 100);

    /** Vanishes, as a line does whose cable is pulled. */
    void hangUp();

    /** This end, as the system's calls take it; nothing to a test under wine. */
    int descriptor() const { return handle; }

private:
    int handle;
    QByteArray name;
    QString link;
};

/** From now on the lines of the test program are the only ones that there are. */
void useNoOtherLines();

} // namespace support
