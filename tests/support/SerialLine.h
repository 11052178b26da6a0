#pragma once

#include "telematics/serialPort.h"
#include "tests/support/PseudoTerminal.h"

#include <QByteArray>
#include <QList>

#include <memory>

/** The serial layer's near end of a line, as its tests on every system use it. */
namespace support {

/** What a loaded machine may be late, in milliseconds. */
inline constexpr int late = 2000;

struct SerialCloser {
    void operator()(SerialPort *port) const { serialClose(port); }
};
using Port = std::unique_ptr<SerialPort, SerialCloser>;

Port opened(const PseudoTerminal &line);
/** Opened and set to 9600 baud, 8 bits, no parity, 1 stop bit; ends the program if it can't be. */
Port configured(const PseudoTerminal &line);

struct Reading {
    int result;
    QByteArray bytes;    ///< the whole buffer, zero where nothing came
    qint64 milliseconds; ///< that it took
};

Reading read(const Port &port, int count, const SerialStop *stop = nullptr);
int write(const Port &port, const QByteArray &bytes);

/** Codes of baud, data bits, parity and stop bits, as the record of the line has them: the kernel's
 *  pseudo-terminals keep no data bits and no parity. */
QList<int> formatOf(const SerialPort *port);

} // namespace support
