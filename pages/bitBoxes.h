#pragma once

#include <QCheckBox>

#include <array>
#include <cstdint>

/** Check boxes that stand for the bits of one of the device's masks, the first for bit 0. */
using BitBoxes = std::array<QCheckBox *, 4>;

inline void checkBits(const BitBoxes &boxes, std::uint8_t mask)
{
    for (std::size_t bit = 0; bit < boxes.size(); ++bit)
        boxes[bit]->setChecked((mask >> bit) & 1);
}

inline std::uint8_t checkedBits(const BitBoxes &boxes)
{
    unsigned mask = 0;
    for (std::size_t bit = 0; bit < boxes.size(); ++bit)
        mask |= unsigned(boxes[bit]->isChecked()) << bit;
    return std::uint8_t(mask);
}
