#include "tests/support/PseudoTerminal.h"

namespace support {

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

} // namespace support
