#pragma once

#include <QByteArray>

#include <termios.h>

namespace support {

/**
 * A serial line without hardware: the kernel's pseudo-terminal. The test holds this end, the
 * program opens the other one by path(). Starts in raw mode without echo at 38400 baud. Ends the
 * test program if the system has no pseudo-terminal left.
 */
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    QByteArray path() const { return name; }

    /** State of the line, as the other end sets and sees it. */
    termios state() const;
    void setState(const termios &state);

    /** Sends all bytes; false if the line took no more for 5 s. */
    bool send(const QByteArray &bytes);
    /** What the other end wrote, once so many bytes are there or the time is over. */
    QByteArray receive(int count, int milliseconds = 5000);
    /** What has been written by now and, without a pause of so many milliseconds, goes on coming.
     */
    QByteArray receiveAll(int pause = 100);

    /** Vanishes, as a line does whose cable is pulled. */
    void hangUp();

private:
    int handle;
    QByteArray name;
};

} // namespace support
