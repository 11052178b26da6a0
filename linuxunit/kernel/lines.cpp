#include "linuxunit/kernel/lines.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"

#include <gpiod.h>

#include <cerrno>
#include <charconv>
#include <chrono>
#include <memory>
#include <thread>

namespace linuxunit {

namespace {

constexpr const char *consumer = "vornaux";
constexpr std::chrono::milliseconds longestHold{50}; ///< of another call on the same line

/** A line with its chip, released in the end. */
using Line = std::unique_ptr<gpiod_line, void (*)(gpiod_line *)>;

gpiod_line *lineOnChip(const LineName &name)
{
    auto *chip = gpiod_chip_open_lookup(name.chip.c_str());
    if (!chip)
        return nullptr;
    unsigned number = 0;
    const char *const end = name.name.data() + name.name.size();
    const auto [stop, error] = std::from_chars(name.name.data(), end, number);
    auto *line = error == std::errc() && stop == end
                     ? gpiod_chip_get_line(chip, number)
                     : gpiod_chip_find_line(chip, name.name.c_str());
    if (!line)
        gpiod_chip_close(chip);
    return line;
}

[[noreturn]] void fail(const LineName &name, int number, const char *holder)
{
    switch (number) {
    case EACCES:
    case EPERM:
        throw Failure{
            NoPermission, "No permission to use the GPIO line " + name.name + "; " + rulesRemedy};
    case EBUSY:
        throw Failure{InUse, "The GPIO line " + name.name + " is in use by " +
                                 (holder ? holder : "another program")};
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case EINVAL: // no such number on the chip
        throw Failure{NotAvailable, {}};
    default:
        throw Failure{
            ReadFailed, "The GPIO line " + name.name + " can't be used: " + errnoText(number)};
    }
}

Line find(const LineName &name)
{
    // The library asks the nodes of this machine, wherever else we look.
    if (!exists("/sys/bus/gpio/devices"))
        throw Failure{NotAvailable, {}};
    errno = 0;
    auto *line = name.chip.empty() ? gpiod_line_find(name.name.c_str()) : lineOnChip(name);
    if (!line)
        fail(name, errno == 0 ? ENOENT : errno, nullptr);
    return {line, &gpiod_line_close_chip};
}

/** Waits for a moment when another of us has it. */
Line request(const LineName &name, int type, int value)
{
    auto line = find(name);
    const gpiod_line_request_config config{
        consumer, type, name.isActiveLow ? GPIOD_LINE_REQUEST_FLAG_ACTIVE_LOW : 0};
    const auto until = std::chrono::steady_clock::now() + longestHold;
    while (gpiod_line_request(line.get(), &config, value) != 0) {
        const int number = errno;
        if (number != EBUSY || std::chrono::steady_clock::now() >= until)
            fail(name, number, gpiod_line_consumer(line.get()));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return line;
}

} // namespace

bool readLine(const LineName &name)
{
    // As it is: an output stays one.
    const auto line = request(name, GPIOD_LINE_REQUEST_DIRECTION_AS_IS, 0);
    const int value = gpiod_line_get_value(line.get());
    if (value < 0)
        fail(name, errno, nullptr);
    return value != 0;
}

void writeLine(const LineName &name, bool isActive)
{
    request(name, GPIOD_LINE_REQUEST_DIRECTION_OUTPUT, int(isActive));
}

} // namespace linuxunit
