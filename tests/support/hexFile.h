#pragma once

#include <QByteArray>

/** Intel HEX as a tool chain writes it, and as one that is broken in one place. */
namespace support {

/** One record with its checksum, without a line end. */
QByteArray hexRecord(int type, int address, const QByteArray &data = {});

/** A whole file: the image from that address on, in lines of so many bytes, and the end record. */
QByteArray hexFile(const QByteArray &image, quint32 address = 0, int bytesPerLine = 16);

} // namespace support
