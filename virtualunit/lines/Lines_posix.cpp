#include "virtualunit/lines/Lines.h"

#include "virtualunit/VirtualUnit.h"

#include <cerrno>
#include <charconv>
#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace virtualunit::lines {

namespace {

using namespace std::chrono_literals;

constexpr auto betweenLooks = 200ms;
// Bytes of a recording that are queued ahead: less than the line sends until the next service.
constexpr std::size_t queuedAhead = 256;

void require(const Error &error)
{
    if (!error.empty())
        throw std::runtime_error(error);
}

std::string text(const char *name)
{
    std::string value;
    require(get(name, value));
    return value;
}

template <typename Number>
Number number(const char *name)
{
    const auto value = text(name);
    Number result{};
    std::from_chars(value.data(), value.data() + value.size(), result);
    return result;
}

/** Flags are "true" and "false", switches numbers. */
bool flag(const char *name)
{
    return text(name) == "true";
}

bool fitted(const char *flagName)
{
    return number<int>("Telematics.available") == 1 && flag(flagName);
}

/** The name under which the program looks for a line; empty if it is none that a folder can have.
 */
std::filesystem::path storedName(const char *name, const char *byDefault)
{
    std::string value;
    // Without a stored string there is no such property, and the program takes its default.
    if (!get(name, value).empty() || value.empty())
        value = byDefault;
    const bool plain = value.find('/') == std::string::npos && value != "." && value != "..";
    return plain ? value : std::string();
}

std::string contents(const std::filesystem::path &file)
{
    std::error_code error;
    if (std::filesystem::is_directory(file, error))
        throw std::runtime_error("The recording \"" + file.string() + "\" is a folder");
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream || bytes.empty())
        throw std::runtime_error("The recording \"" + file.string() + "\" can't be read");
    return bytes;
}

/** The folder, made if need be, held against other processes. */
int heldFolder(const std::filesystem::path &folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw std::runtime_error(
            "The folder \"" + folder.string() + "\" can't be made: " + error.message());
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        throw std::runtime_error("The folder \"" + folder.string() +
                                 "\" can't be opened: " + std::generic_category().message(errno));
    if (::flock(handle, LOCK_EX | LOCK_NB) == 0)
        return handle;
    ::close(handle);
    throw std::runtime_error("Somebody serves lines in \"" + folder.string() + "\" already");
}

} // namespace

Lines::Lines(const std::filesystem::path &folder, const std::filesystem::path &recording)
    : place(folder)
    , replay(recording.empty() ? std::string() : contents(recording))
    , lock(folder)
{
    lookAtUnit();
}

Lines::Folder::Folder(const std::filesystem::path &path)
    : handle(heldFolder(path))
{}

Lines::Folder::~Folder()
{
    ::close(handle);
}

void Lines::serve(Clock::time_point now)
{
    const std::chrono::duration<double> passed =
        lastServed == Clock::time_point() ? Clock::duration::zero() : now - lastServed;
    lastServed = now;
    const auto heard = gsmLine.receive();
    gpsLine.receive(); // the receiver takes no commands
    // Who has just changed the unit and asks the modem is to find the change.
    if (!heard.empty() || now - lastLook >= betweenLooks) {
        lastLook = now;
        lookAtUnit();
    }
    serveReceiver(now);
    serveModem(heard, now);
    gpsLine.transmit(passed.count());
    gsmLine.transmit(passed.count());
}

void Lines::lookAtUnit()
{
    const bool gps = fitted("Hardware.hasGps");
    const bool gsm = fitted("Hardware.hasGsm");
    const auto gsmName = gsm ? storedName("Settings.VornsettingsGsmPort", "COM3") : "";
    const auto gpsName = gps ? storedName("Settings.VornsettingsGpsPort", "COM4") : "";
    // Two lines can't have one name; then the program finds the modem there.
    gpsLine.setName(gpsName.empty() || gpsName == gsmName ? "" : place / gpsName);
    gsmLine.setName(gsmName.empty() ? "" : place / gsmName);
    setGpsPower(gps && number<int>("Telematics.gpsPowerStatus") == 1);
    sky.antenna = number<int>("Telematics.gpsAntennaStatus") == 1;
    sky.coldStart = number<int>("Gps.coldStart");
    sky.satellites = number<int>("Gps.satellites");
    sky.latitude = number<double>("Gps.latitude");
    sky.longitude = number<double>("Gps.longitude");
    sky.speed = number<double>("Gps.speed");

    modem.sim = {flag("Gsm.simInserted"), text("Gsm.pin"), text("Gsm.puk"),
        number<int>("Gsm.pinTries"), number<int>("Gsm.pukTries")};
    modem.network = {
        number<int>("Gsm.registration"), number<int>("Gsm.signal"), text("Gsm.network")};
    unaskedInterval = std::chrono::seconds(number<int>("Gsm.unaskedInterval"));
    setGsmPower(gsm && number<int>("Telematics.gprsPowerStatus") == 1);
}

void Lines::setGpsPower(bool on)
{
    if (on && !gpsPowered) {
        receiver.powerOn();
        replayed = 0;
        nextSecond = lastServed;
    } else if (!on) {
        gpsLine.silence();
    }
    gpsPowered = on;
}

void Lines::setGsmPower(bool on)
{
    if (on && !gsmPowered) {
        gsmLine.send(modem.powerOn());
        lastUnasked = lastServed;
    } else if (!on) {
        gsmLine.silence();
    }
    gsmPowered = on;
}

void Lines::serveReceiver(Clock::time_point now)
{
    if (!gpsPowered)
        return;
    while (!replay.empty() && gpsLine.waiting() < queuedAhead) {
        const auto piece = std::string_view(replay).substr(replayed, queuedAhead);
        gpsLine.send(piece);
        replayed = (replayed + piece.size()) % replay.size();
    }
    if (!replay.empty() || now < nextSecond)
        return;
    gpsLine.send(receiver.second(sky, std::time(nullptr)));
    // After a standstill of the machine the seconds that are gone are not made up for.
    nextSecond = std::max(nextSecond + 1s, now);
}

void Lines::serveModem(const std::string &heard, Clock::time_point now)
{
    if (!gsmPowered)
        return;
    if (!heard.empty()) {
        const auto before = modem.sim;
        gsmLine.send(modem.receive(heard));
        keepCard(before);
        for (const auto &message : modem.takeSent())
            require(addShortMessage(message.number, message.text));
    }
    gsmLine.send(modem.announceRegistration());
    if (unaskedInterval > 0s && now - lastUnasked >= unaskedInterval) {
        lastUnasked = now;
        gsmLine.send(modem.announceTimeZone());
    }
}

/** What a PIN or PUK has changed on the card. */
void Lines::keepCard(const SimCard &before) const
{
    if (modem.sim.pin != before.pin)
        require(set("Gsm.pin", modem.sim.pin));
    if (modem.sim.pinTries != before.pinTries)
        require(set("Gsm.pinTries", std::to_string(modem.sim.pinTries)));
    if (modem.sim.pukTries != before.pukTries)
        require(set("Gsm.pukTries", std::to_string(modem.sim.pukTries)));
}

} // namespace virtualunit::lines
