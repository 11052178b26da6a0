#pragma once

#include <QString>

namespace support {

/** A UTF-8 text without ceremony: "Buzzer.volume"_s. */
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, int(size));
}

} // namespace support
