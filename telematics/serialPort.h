#pragma once

#include <atomic>
#include <cstdint>

/**
 * One serial line of the operating system, opened for this program alone. Plain functions with
 * integer results: no list of ports, no global state, no lock. A line is used by one thread at a
 * time, which need not be the one that opened it.
 *
 * The calling order is serialOpen, serialConfigure, any number of reads and writes, serialClose.
 */
struct SerialPort;

/** What serialConfigure, serialRead and serialWrite return. */
enum SerialResult : std::int32_t {
    SERIAL_OK = 0,
    SERIAL_NO_LINE = 1,           ///< null, not open, not configured, or refused by the system
    SERIAL_BAUD_REFUSED = 3,      ///< baud code without a speed
    SERIAL_DATA_BITS_REFUSED = 4, ///< data bits code out of range
    SERIAL_PARITY_REFUSED = 5,    ///< parity code out of range
    SERIAL_STOP_BITS_REFUSED = 6, ///< stop bits code out of range
    SERIAL_TIMED_OUT = 7,         ///< silence before the requested count was reached
    SERIAL_STOPPED = 8,           ///< a SerialStop ended the read
};

/** Codes of the line speeds, in baud. The code 1 has none. */
enum SerialBaudCode : std::int32_t {
    SERIAL_1200 = 0,
    SERIAL_2400 = 2,
    SERIAL_4800 = 3,
    SERIAL_9600 = 4,
    SERIAL_19200 = 5,
    SERIAL_38400 = 6,
    SERIAL_57600 = 7,
    SERIAL_115200 = 8,
};

/** Codes of the character sizes. */
enum SerialDataBitsCode : std::int32_t {
    SERIAL_5_BITS = 0,
    SERIAL_6_BITS = 1,
    SERIAL_7_BITS = 2,
    SERIAL_8_BITS = 3,
};

/** Codes of the parities. */
enum SerialParityCode : std::int32_t {
    SERIAL_NO_PARITY = 0,
    SERIAL_EVEN_PARITY = 1,
    SERIAL_ODD_PARITY = 2,
};

/** Codes of the stop bits. */
enum SerialStopBitsCode : std::int32_t {
    SERIAL_1_STOP_BIT = 0,
    SERIAL_2_STOP_BITS = 1,
};

/** Silence in milliseconds after which a read gives up. */
inline constexpr std::int32_t serialSilence = 3000;

/** Time in milliseconds without a byte going out after which a write gives up. */
inline constexpr std::int32_t serialStandstill = 5000;

/**
 * Ends the reads of one reader from another thread: the one that waits, at once, and all that
 * begin later, before they take anything from the line. Lives longer than these reads.
 */
class SerialStop
{
public:
    SerialStop();
    ~SerialStop();
    SerialStop(const SerialStop &) = delete;
    SerialStop &operator=(const SerialStop &) = delete;

    /** Any thread, any number of times. There is no way back. */
    void request();
    bool isRequested() const { return requested.load(std::memory_order_relaxed); }

    /** The system's own object that a waiting read looks at: a descriptor or an event. */
    std::intptr_t signal() const { return wakeUp; }

private:
    std::atomic<bool> requested{false};
    const std::intptr_t wakeUp;
};

/**
 * Opens the line of that name, such as "COM3", for reading and writing. Null if there is no such
 * line or if somebody holds it; whether a name that stands for something else than a serial line is
 * refused here or by serialConfigure is up to the system. The record belongs to the caller, who
 * gives it to serialClose.
 */
SerialPort *serialOpen(const char *name);

/**
 * Sets the line's format by the codes above, without any handshake. A refused code leaves the line
 * as it is: one that was configured before goes on with its old format.
 */
std::int32_t serialConfigure(SerialPort *port, std::int32_t baudCode, std::int32_t dataBitsCode,
    std::int32_t parityCode, std::int32_t stopBitsCode);

/**
 * Writes all bytes and returns when they are out, however long that takes; SERIAL_OK, or
 * SERIAL_NO_LINE if the line is gone. A line that stands still for serialStandstill counts as gone;
 * on Windows it is left to the driver to find that out.
 */
std::int32_t serialWrite(SerialPort *port, const void *bytes, std::uint32_t count);

/**
 * Fills the buffer. SERIAL_OK when it is full, SERIAL_TIMED_OUT when the line has been silent for
 * serialSilence before that; what came until then is in the buffer, the rest of which keeps what
 * it held. A line that vanished is a silent one. Adds no zero byte.
 *
 * @param stop ends the read with SERIAL_STOPPED when it is requested; may be null
 */
std::int32_t serialRead(
    SerialPort *port, void *buffer, std::uint32_t count, const SerialStop *stop = nullptr);

/** Drops what waits to be sent. Bytes received but not read yet stay. Null is allowed. */
void serialPurge(SerialPort *port);

/** Purges the line, puts it back as serialOpen found it, and frees the record. Null is allowed. */
void serialClose(SerialPort *port);
