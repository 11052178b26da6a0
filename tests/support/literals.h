#pragma once

#include <QString>

namespace support {

/** A UTF-8 text without ceremony: "Buzzer.volume"_s. */
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, int(size));
}

/** What the device and tables of plain text say. */
inline QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

} // namespace support
