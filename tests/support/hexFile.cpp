#include "tests/support/hexFile.h"

#include <utility>

namespace support {

QByteArray hexRecord(int type, int address, const QByteArray &data)
{
    QByteArray raw;
    raw += char(data.size());
    raw += char(address >> 8);
    raw += char(address);
    raw += char(type);
    raw += data;
    int sum = 0;
    for (const char byte : std::as_const(raw))
        sum += byte;
    raw += char(-sum);
    return ':' + raw.toHex().toUpper();
}

QByteArray hexFile(const QByteArray &image, quint32 address, int bytesPerLine)
{
    QByteArray file;
    quint32 upper = 0;
    for (int at = 0; at < image.size();) {
        const quint32 here = address + quint32(at);
        if (here >> 16 != upper) {
            upper = here >> 16;
            file += hexRecord(4, 0, QByteArray{1, char(upper >> 8)} + char(upper)) + '\n';
        }
        const auto untilBoundary = int(0x10000 - (here & 0xFFFF));
        const QByteArray data = image.mid(at, qMin(bytesPerLine, untilBoundary));
        file += hexRecord(0, int(here & 0xFFFF), data) + '\n';
        at += int(data.size());
    }
    return file + hexRecord(1, 0) + '\n';
}

} // namespace support
