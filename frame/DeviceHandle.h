#pragma once

#include "frame/VornAux2.h"
#include "frame/workSteps.h"

#include <type_traits>

/**
 * One handle of a device family: created with the object, released with it.
 *
 * The order in which handles come and go is behaviour that a unit can see, so members and locals
 * of this type stand in the order in which the families are to be opened. Converts to the raw
 * handle, which stays owned by this object; that is done for a call on the device, so it is a step
 * of work. Not for sharing between threads.
 */
template <auto Create, auto Release>
class DeviceHandle
{
public:
    using Raw = std::invoke_result_t<decltype(Create)>;

    DeviceHandle()
        : raw(Create())
    {}
    ~DeviceHandle()
    {
        if (owned)
            Release(raw);
    }
    DeviceHandle(const DeviceHandle &) = delete;
    DeviceHandle &operator=(const DeviceHandle &) = delete;

    operator Raw() const
    {
        workStep();
        return raw;
    }

    /** Gives the handle back before the end of the scope. */
    void release()
    {
        if (owned)
            Release(raw);
        owned = false;
    }

    /** Leaves the handle open for good. */
    void keep() { owned = false; }

private:
    Raw raw;
    bool owned = true;
};
