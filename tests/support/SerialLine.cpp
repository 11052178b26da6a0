#include "tests/support/SerialLine.h"

#include <QElapsedTimer>

namespace support {

Port opened(const PseudoTerminal &line)
{
    return Port(serialOpen(line.path().constData()));
}

Port configured(const PseudoTerminal &line)
{
    Port port = opened(line);
    if (serialConfigure(port.get(), SERIAL_9600, SERIAL_8_BITS, SERIAL_NO_PARITY,
            SERIAL_1_STOP_BIT) != SERIAL_OK)
        qFatal("line refused");
    return port;
}

Reading read(const Port &port, int count, const SerialStop *stop)
{
    Reading reading{0, QByteArray(count, '\0'), 0};
    QElapsedTimer timer;
    timer.start();
    reading.result = serialRead(port.get(), reading.bytes.data(), std::uint32_t(count), stop);
    reading.milliseconds = timer.elapsed();
    return reading;
}

int write(const Port &port, const QByteArray &bytes)
{
    return serialWrite(port.get(), bytes.constData(), std::uint32_t(bytes.size()));
}

} // namespace support
