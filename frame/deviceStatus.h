#pragma once

#include "frame/VornAux2.h"

#include <cstdint>

/** What the device library calls a switch that stands so. */
constexpr std::int32_t statusOf(bool on)
{
    return on ? STATUS_ON : STATUS_OFF;
}
