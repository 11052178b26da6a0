#pragma once

#include "virtualunit/lines/GpsReceiver.h"
#include "virtualunit/lines/Modem.h"
#include "virtualunit/lines/VirtualLine.h"

#include <chrono>
#include <filesystem>
#include <string>

namespace virtualunit::lines {

/**
 * The two serial lines of the virtual unit's add-on board: a GPS receiver at 9600 baud and a modem
 * at 57600 baud, in a folder under the names that the unit's settings store holds. Both do as the
 * unit says: whether they are fitted and powered, the antenna, the SIM card, the network. Failures
 * of the system are thrown as std::runtime_error. One thread.
 */
class Lines
{
public:
    using Clock = std::chrono::steady_clock;

    /**
     * @param folder made if need be, and used by one process only
     * @param recording replayed over and over, at the pace of the line, in place of the receiver's
     *        own sentences; empty for those
     */
    explicit Lines(
        const std::filesystem::path &folder, const std::filesystem::path &recording = {});

    /** Does what is due at that time. To be called every 20 ms or so. */
    void serve(Clock::time_point now);

private:
    class Folder
    {
    public:
        explicit Folder(const std::filesystem::path &path);
        ~Folder();
        Folder(const Folder &) = delete;
        Folder &operator=(const Folder &) = delete;

    private:
        int handle;
    };

    void lookAtUnit();
    void setGpsPower(bool on);
    void setGsmPower(bool on);
    void serveReceiver(Clock::time_point now);
    void serveModem(const std::string &heard, Clock::time_point now);
    void keepCard(const SimCard &before) const;

    std::filesystem::path place;
    std::string replay; // bytes of the recording
    std::size_t replayed = 0;
    Folder lock; // held for as long as there are links in it

    VirtualLine gpsLine{9600};
    VirtualLine gsmLine{57600};
    GpsReceiver receiver;
    GpsSurroundings sky;
    Modem modem;
    bool gpsPowered = false;
    bool gsmPowered = false;
    std::chrono::seconds unaskedInterval{0}; // between lines that nobody asked for; 0 for never
    Clock::time_point lastLook;
    Clock::time_point lastServed;
    Clock::time_point nextSecond;  // of the receiver
    Clock::time_point lastUnasked; // line of the modem
};

} // namespace virtualunit::lines
