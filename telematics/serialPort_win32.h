#pragma once

#include "telematics/serialPort.h"

#include <windows.h>

/** The record of an open line on Windows. Only the layer itself and its test look into it. */
struct SerialPort {
    HANDLE handle;             ///< INVALID_HANDLE_VALUE means invalid
    DCB savedState;            ///< the line as found, put back on closing
    DCB workingState;          ///< what serialConfigure edits and hands to the system
    std::uint8_t configured;   ///< 1 once a serialConfigure succeeded
    std::int32_t baudCode;     ///< the codes of the last serialConfigure that succeeded
    std::int32_t dataBitsCode; ///< "
    std::int32_t parityCode;   ///< "
    std::int32_t stopBitsCode; ///< "
};
