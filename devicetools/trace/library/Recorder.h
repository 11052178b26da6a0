#pragma once

#include "devicetools/trace/Settings.h"
#include "devicetools/trace/Tally.h"
#include "devicetools/trace/library/Device.h"
#include "devicetools/trace/library/Handles.h"
#include "devicetools/trace/library/RealLibrary.h"
#include "devicetools/trace/library/Sink.h"

#include <array>
#include <atomic>
#include <chrono>
#include <unordered_map>

namespace trace {

/** Passes every call on to the real library and writes it down when it returns. */
class Recorder : public Device
{
public:
    /** Throws std::exception when the trace can't be written. */
    explicit Recorder(const Settings &settings);

    void *create(std::size_t family) override;
    void release(std::size_t family, void *handle) override;
    DeviceCode perform(std::size_t family, std::size_t operation, contract::Value *values) override;
    const char *text(std::size_t text, std::int64_t number) override;

private:
    using Clock = std::chrono::steady_clock;

    /** One line while it comes into being. */
    struct Line {
        Clock::time_point begin;
        Clock::time_point end;
        std::string call; ///< from the operation's name on
    };
    struct CountedFault {
        Fault fault;
        std::atomic<std::uint64_t> seen{0};
    };

    const RealLibrary library;
    const bool times;
    const Clock::time_point start;
    const std::unique_ptr<Tally> tally;
    const std::unique_ptr<Sink> sink;
    std::string sinkError;
    Handles handles;
    std::unordered_map<std::string_view, CountedFault> faults;
    std::unordered_map<std::string_view, std::chrono::milliseconds> delays;
    std::array<std::atomic<contract::Function>, std::size(contract::operations)> functions{};
    std::mutex mutex; ///< of what is below, and of the order of the lines
    unsigned lastThread = 0;
    bool hasFailed = false;

    contract::Function functionOf(std::size_t operation);
    DeviceCode faultOf(const char *operation);
    void pause(const char *operation) const;
    Clock::time_point now() const { return times ? Clock::now() : Clock::time_point(); }
    void write(const Line &line);
};

} // namespace trace
