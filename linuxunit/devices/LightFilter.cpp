#include "linuxunit/devices/LightFilter.h"

#include "linuxunit/calls/Failure.h"

#include <cmath>
#include <numeric>

namespace linuxunit {

void checkFilter(const FilterSettings &settings)
{
    if (settings.averageWindowSize < 1 || settings.averageWindowSize > longestWindow ||
        settings.rejectWindowSize > longestWindow || settings.samplingMode < SAMPLING_STANDARD ||
        settings.samplingMode > SAMPLING_AUTO)
        throw Failure{ValueOutOfRange, {}};
}

LightFilter::LightFilter(const FilterSettings &given)
    : settings(given)
{}

void LightFilter::add(double lux)
{
    if (!samples.empty() && settings.rejectWindowSize > 0 &&
        std::abs(lux - average()) > settings.rejectDeltaLux) {
        if (++rejected < settings.rejectWindowSize)
            return;
        samples.clear(); // the light has changed: what was before says nothing any more
    }
    rejected = 0;
    samples.push_back(lux);
    if (samples.size() > settings.averageWindowSize)
        samples.pop_front();
}

double LightFilter::average() const
{
    if (samples.empty())
        return 0;
    return std::accumulate(samples.begin(), samples.end(), 0.0) / double(samples.size());
}

bool LightFilter::isEmpty() const
{
    return samples.empty();
}

} // namespace linuxunit
