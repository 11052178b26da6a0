#include "telematics/serialPort_win32.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

namespace {

constexpr std::size_t nameUnits = 56; // the ending zero included

constexpr DWORD queueBytes = 0x1000; // of the driver, each way

// Not PURGE_RXCLEAR: what the other end said before it was asked is still wanted.
constexpr DWORD purgeMask = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR;
static_assert(purgeMask == 7 && EV_ERR == 0x80);

bool isOpen(const SerialPort *port)
{
    return port != nullptr && port->handle != INVALID_HANDLE_VALUE;
}

bool isUsable(const SerialPort *port)
{
    return isOpen(port) && port->configured != 0;
}

/** The port of that name for this caller alone. The name goes to the system as it stands. */
HANDLE openExclusively(const char *name)
{
    std::array<wchar_t, nameUnits> wide{};
    const std::size_t length = std::strlen(name);
    if (length >= wide.size())
        return INVALID_HANDLE_VALUE;
    for (std::size_t i = 0; i < length; ++i)
        wide[i] = static_cast<wchar_t>(static_cast<signed char>(name[i]));
    return CreateFileW(
        wide.data(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

/** A read gives at once what is there, else the first byte to come, else nothing after the
 *  silence. A write never gives up. */
void setTimeouts(HANDLE handle)
{
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = MAXDWORD;
    timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
    timeouts.ReadTotalTimeoutConstant = serialSilence;
    timeouts.WriteTotalTimeoutMultiplier = 0;
    timeouts.WriteTotalTimeoutConstant = 0;
    SetCommTimeouts(handle, &timeouts);
}

bool storeBaud(DCB &state, std::int32_t code)
{
    constexpr DWORD none = 0;
    constexpr DWORD speeds[] = {1200, none, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
    if (code < 0 || code >= std::int32_t(std::size(speeds)) || speeds[code] == none)
        return false;
    state.BaudRate = speeds[code];
    return true;
}

/** Stores the number that stands for that code, if there is one. */
template <std::size_t Count>
bool storeByte(BYTE &field, const BYTE (&numbers)[Count], std::int32_t code)
{
    if (code < 0 || code >= std::int32_t(Count))
        return false;
    field = numbers[code];
    return true;
}

/** No handshake, and bytes as they are on the wire. All other flags stay as the system had them. */
void storeTransparency(DCB &state)
{
    state.fOutxCtsFlow = FALSE;
    state.fOutxDsrFlow = FALSE;
    state.fOutX = FALSE;
    state.fInX = FALSE;
    state.fNull = FALSE;
    state.fAbortOnError = FALSE;
}

/** What is there, else the first bytes to come, else nothing after the silence. */
DWORD readSome(HANDLE handle, char *buffer, DWORD count)
{
    // The system counts no bytes when it fails, and bytes alone are what is wanted.
    DWORD got = 0;
    ReadFile(handle, buffer, count, &got, nullptr);
    return got;
}

/**
 * The same, ended by a stop. A line that is opened for transfers at once gives nothing to wait for
 * beside it, and a transfer that is cancelled must have begun; so this looks from time to time
 * whether there is something to read.
 */
DWORD readSome(HANDLE handle, char *buffer, DWORD count, const SerialStop &stop)
{
    using std::chrono::milliseconds;
    using Clock = std::chrono::steady_clock;
    constexpr DWORD lookInterval = 10; // milliseconds

    const auto end = Clock::now() + milliseconds(serialSilence);
    const auto signal = reinterpret_cast<HANDLE>(stop.signal());
    while (!stop.isRequested()) {
        COMSTAT status{};
        if (ClearCommError(handle, nullptr, &status) && status.cbInQue > 0) {
            if (const DWORD got = readSome(handle, buffer, std::min(count, status.cbInQue)))
                return got;
        }
        if (Clock::now() >= end)
            return 0;
        if (WaitForSingleObject(signal, lookInterval) == WAIT_FAILED)
            Sleep(lookInterval);
    }
    return 0;
}

bool isStopped(const SerialStop *stop)
{
    return stop != nullptr && stop->isRequested();
}

} // namespace

// Without an event, a stop is seen at the next look.
SerialStop::SerialStop()
    : wakeUp(reinterpret_cast<std::intptr_t>(CreateEventW(nullptr, TRUE, FALSE, nullptr)))
{}

SerialStop::~SerialStop()
{
    CloseHandle(reinterpret_cast<HANDLE>(wakeUp));
}

void SerialStop::request()
{
    requested.store(true, std::memory_order_relaxed);
    SetEvent(reinterpret_cast<HANDLE>(wakeUp));
}

SerialPort *serialOpen(const char *name)
{
    if (!name)
        return nullptr;
    std::unique_ptr<SerialPort> port(new (std::nothrow) SerialPort{});
    if (!port)
        return nullptr;
    port->handle = openExclusively(name);
    if (port->handle == INVALID_HANDLE_VALUE)
        return nullptr;
    // What fails here shows at the latest in serialConfigure.
    SetupComm(port->handle, queueBytes, queueBytes);
    setTimeouts(port->handle);
    SetCommMask(port->handle, EV_ERR);
    GetCommState(port->handle, &port->savedState);
    GetCommState(port->handle, &port->workingState);
    PurgeComm(port->handle, purgeMask);
    return port.release();
}

std::int32_t serialConfigure(SerialPort *port, std::int32_t baudCode, std::int32_t dataBitsCode,
    std::int32_t parityCode, std::int32_t stopBitsCode)
{
    constexpr BYTE sizes[] = {5, 6, 7, 8};
    constexpr BYTE parities[] = {NOPARITY, EVENPARITY, ODDPARITY};
    constexpr BYTE stops[] = {ONESTOPBIT, TWOSTOPBITS};

    if (!isOpen(port))
        return SERIAL_NO_LINE;
    // Each code is stored before the next one is looked at; the line itself waits for the end.
    auto &state = port->workingState;
    if (!storeBaud(state, baudCode))
        return SERIAL_BAUD_REFUSED;
    if (!storeByte(state.ByteSize, sizes, dataBitsCode))
        return SERIAL_DATA_BITS_REFUSED;
    if (!storeByte(state.Parity, parities, parityCode))
        return SERIAL_PARITY_REFUSED;
    if (!storeByte(state.StopBits, stops, stopBitsCode))
        return SERIAL_STOP_BITS_REFUSED;
    storeTransparency(state);
    serialPurge(port);
    if (!SetCommState(port->handle, &state))
        return SERIAL_NO_LINE;
    port->configured = 1;
    port->baudCode = baudCode;
    port->dataBitsCode = dataBitsCode;
    port->parityCode = parityCode;
    port->stopBitsCode = stopBitsCode;
    return SERIAL_OK;
}

std::int32_t serialWrite(SerialPort *port, const void *bytes, std::uint32_t count)
{
    if (!isUsable(port))
        return SERIAL_NO_LINE;
    const auto *next = static_cast<const char *>(bytes);
    while (count > 0) {
        DWORD taken = 0;
        if (!WriteFile(port->handle, next, count, &taken, nullptr) || taken == 0)
            return SERIAL_NO_LINE;
        next += taken;
        count -= std::uint32_t(taken);
    }
    return SERIAL_OK;
}

std::int32_t serialRead(SerialPort *port, void *buffer, std::uint32_t count, const SerialStop *stop)
{
    if (!isUsable(port))
        return SERIAL_NO_LINE;
    auto *next = static_cast<char *>(buffer);
    while (count > 0) {
        if (isStopped(stop))
            return SERIAL_STOPPED;
        const DWORD got =
            stop ? readSome(port->handle, next, count, *stop) : readSome(port->handle, next, count);
        if (got == 0 && !isStopped(stop))
            return SERIAL_TIMED_OUT;
        next += got;
        count -= std::uint32_t(got);
    }
    return SERIAL_OK;
}

void serialPurge(SerialPort *port)
{
    if (isOpen(port))
        PurgeComm(port->handle, purgeMask);
}

void serialClose(SerialPort *port)
{
    if (!isOpen(port))
        return;
    serialPurge(port);
    SetCommState(port->handle, &port->savedState);
    CloseHandle(port->handle);
    delete port;
}
