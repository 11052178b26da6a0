#include "telematics/serialPort_win32.h"
#include "tests/support/SerialLine.h"

namespace support {

QList<int> formatOf(const SerialPort *port)
{
    return {port->baudCode, port->dataBitsCode, port->parityCode, port->stopBitsCode};
}

} // namespace support
