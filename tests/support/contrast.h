#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace support {

/** Relative luminance, 0 to 1, as sRGB has it. */
inline double luminance(const QColor &colour)
{
    const auto linear = [](int channel) {
        const double part = channel / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.red()) + 0.7152 * linear(colour.green()) +
           0.0722 * linear(colour.blue());
}

/** 1 for alike to 21 for black and white. */
inline double contrast(const QColor &one, const QColor &other)
{
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

} // namespace support
