#include "linuxunit/devices/AveragedLight.h"

#include "linuxunit/calls/Failure.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace linuxunit {

namespace {

constexpr std::chrono::milliseconds samplePeriod{200};

} // namespace

AveragedLight::~AveragedLight()
{
    stop();
}

std::uint16_t AveragedLight::lux()
{
    // Also while it is averaged: a sensor that has gone has no average.
    double lux = source.lux();
    {
        const std::lock_guard lock(mutex);
        if (filter && !filter->isEmpty())
            lux = filter->average();
    }
    return std::uint16_t(std::lround(std::clamp(lux, 0.0, double(UINT16_MAX))));
}

void AveragedLight::require()
{
    source.require();
}

void AveragedLight::start(const FilterSettings &settings)
{
    checkFilter(settings);
    stop();
    filter.emplace(settings);
    thread = std::thread([this] { sample(); });
}

void AveragedLight::stop()
{
    if (!thread.joinable())
        return;
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    change.notify_all();
    thread.join();
    filter.reset();
    isEnding = false;
}

void AveragedLight::sample()
{
    LightSource own;
    std::unique_lock lock(mutex);
    while (!isEnding) {
        lock.unlock();
        std::optional<double> lux;
        try {
            lux = own.lux();
        } catch (const Failure &) {
            // Gone, asleep or busy: it may be back at the next sample.
        }
        lock.lock();
        if (lux)
            filter->add(*lux);
        change.wait_for(lock, samplePeriod, [this] { return isEnding; });
    }
}

} // namespace linuxunit
