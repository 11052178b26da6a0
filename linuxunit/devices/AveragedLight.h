#pragma once

#include "linuxunit/devices/LightFilter.h"
#include "linuxunit/devices/LightSource.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace linuxunit {

/**
 * The light sensor as one handle sees it: as it is, or averaged by a thread that samples five times
 * a second and ends with stop() or with the object. One thread at a time.
 */
class AveragedLight
{
public:
    AveragedLight() = default;
    ~AveragedLight();
    AveragedLight(const AveragedLight &) = delete;
    AveragedLight &operator=(const AveragedLight &) = delete;

    /** Lux, averaged while that runs; 0 to 65535. */
    std::uint16_t lux();
    void start(const FilterSettings &settings);
    void stop();
    void require();

private:
    void sample();

    LightSource source;
    std::thread thread;
    std::mutex mutex;
    std::condition_variable change;
    bool isEnding = false;
    std::optional<LightFilter> filter; ///< while the thread runs
};

} // namespace linuxunit
