#pragma once

#include "telematics/serialPort.h"

#include <atomic>
#include <cstdint>

/*
 * What the telematics page, its modem console and the GPS thread share in the whole process. Each
 * value stands alone and is read and written without a lock.
 */

/**
 * The line to the GPS receiver; null when closed. The page opens it, the GPS thread closes and
 * clears it. Atomic, since a thread that outlives its page still does so.
 */
extern std::atomic<SerialPort *> gpsPort;

/**
 * A share in gpsPort: whoever gives the last one back closes the line and clears gpsPort. There is
 * more than one GPS thread only while an earlier one still sits in a device call that outlasted its
 * page's patience; the line mustn't go from under either of them.
 */
class GpsLineShare
{
public:
    /** If the last share is being given back just now, waits until the line is closed. */
    GpsLineShare();
    ~GpsLineShare() { giveBack(); }
    GpsLineShare(const GpsLineShare &) = delete;
    GpsLineShare &operator=(const GpsLineShare &) = delete;

    /** Before the end of the scope; any thread. */
    void giveBack();

private:
    std::atomic<bool> held{true};
};

/** The line to the modem; null when closed. Main thread only. */
extern SerialPort *gsmPort;

/** Set to 1 by the GPS thread when it starts, to 0 by whoever wants it to end. */
extern std::atomic<std::uint8_t> gpsKeepRunning;

/** True while the GPS tab shows the parsed view, false while it shows the raw one. Main thread. */
extern bool gpsDataMode;
