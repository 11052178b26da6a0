#pragma once

#include "devicetools/contract.h"

namespace trace {

/** What answers the program: the real library with a pen in hand, or a trace. Any thread. Functions
 *  are numbered by their rows in the contract's tables. */
class Device
{
public:
    virtual ~Device() = default;
    virtual void *create(std::size_t family) = 0;
    virtual void release(std::size_t family, void *handle) = 0;
    /** The values may be changed. */
    virtual DeviceCode perform(
        std::size_t family, std::size_t operation, contract::Value *values) = 0;
    virtual const char *text(std::size_t text, std::int64_t number) = 0;
};

/** The program's device, made at its first call and never destroyed: threads may still call while
 *  the process ends. */
Device &device() noexcept;

} // namespace trace
