#include "commandline/commandline.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/Accumulator.h"
#include "linuxunit/devices/Sensors.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/store/Counters.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <iostream>
#include <optional>
#include <string>

namespace {

using namespace linuxunit;

constexpr int longestInterval =
    55; ///< seconds: with the writing a power cut loses a minute at most

double secondsOf(clockid_t clock)
{
    timespec now{};
    ::clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

/** What a reading gives, nothing if it isn't to be had. */
template <typename Reading>
auto readingOf(const Reading &read) -> std::optional<decltype(read())>
{
    try {
        return read();
    } catch (const Failure &) {
        return std::nullopt;
    }
}

/** Of the main board, or else of the first sensor there is. */
std::optional<std::int16_t> celsius()
{
    Thermometers thermometers;
    const auto board = readingOf([&] { return thermometers.board(); });
    return board ? board : readingOf([&] { return thermometers.processor(0).celsius; });
}

std::optional<BatteryMoment> batteryNow()
{
    Accumulator battery;
    if (!readingOf([&] { return battery.isAvailable(); }).value_or(false))
        return std::nullopt;
    BatteryMoment moment;
    if (const auto source = readingOf([&] { return battery.powerSource(); }))
        moment.isFeeding = *source == POWER_BATTERY;
    if (const auto celsius = readingOf([&] { return battery.celsius(); }))
        moment.celsius = *celsius;
    return moment;
}

/** What tells one start of the machine from another. */
std::string presentStart()
{
    constexpr char path[] = "/proc/sys/kernel/random/boot_id";
    try {
        return readText(path);
    } catch (const Failure &failure) {
        if (!failure.sentence.empty())
            throw;
        throw Failure{ReadFailed, std::string(path) + " is missing"};
    }
}

Moment present()
{
    const double running = secondsOf(CLOCK_MONOTONIC);
    return {presentStart(), running, std::max(secondsOf(CLOCK_BOOTTIME) - running, 0.0), celsius(),
        batteryNow()};
}

/** False when the process is asked to end. */
bool wait(const sigset_t &ends, int seconds)
{
    const timespec interval{seconds, 0};
    int got = -1;
    do {
        got = ::sigtimedwait(&ends, nullptr, &interval);
    } while (got < 0 && errno == EINTR);
    return got < 0;
}

/** A disk that is full for a while is no reason to stop counting. */
void count(Counters &counters, bool &isSilent)
{
    try {
        counters.add(present());
        isSilent = false;
    } catch (const Failure &failure) {
        if (!isSilent)
            std::cerr << "vornaux-counter: " << failure.sentence << '\n';
        isSilent = true;
    }
}

void run(int interval)
{
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    Counters counters;
    bool isSilent = false;
    do {
        count(counters, isSilent);
    } while (wait(ends, interval));
    count(counters, isSilent);
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Counts how long this machine runs, at which temperatures, and how often it was "
                 "started, for the Linux unit. It is a service, and runs until it is ended.",
        "vornaux-counter");
    app.footer("Exit codes: 0 ended as asked, 1 the counters can't be kept, 2 wrong usage.");
    int interval = longestInterval;
    app.add_option("--interval", interval, "Seconds from one count to the next, 55 at most")
        ->check(CLI::Range(1, longestInterval));
    app.callback([&] {
        try {
            run(interval);
        } catch (const Failure &failure) {
            throw commandline::Refusal{failure.sentence};
        }
    });
    return commandline::run(app, argc, argv);
}
