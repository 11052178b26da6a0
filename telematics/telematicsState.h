#pragma once

#include "telematics/serialPort.h"

#include <atomic>
#include <cstdint>

/*
 * What the telematics page, its modem console and the GPS thread share in the whole process. Each
 * value stands alone and is read and written without a lock.
 */

/**
 * The line to the GPS receiver; null when closed. The page opens it while no GPS thread runs, the
 * thread closes and clears it. Atomic, since a thread that outlives its page still clears it.
 */
extern std::atomic<SerialPort *> gpsPort;

/** The line to the modem; null when closed. Main thread only. */
extern SerialPort *gsmPort;

/** Set to 1 by the GPS thread when it starts, to 0 by whoever wants it to end. */
extern std::atomic<std::uint8_t> gpsKeepRunning;

/** True while the GPS tab shows the parsed view, false while it shows the raw one. Main thread. */
extern bool gpsDataMode;
