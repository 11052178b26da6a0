#include "linuxunit/calls/Failure.h"
#include "linuxunit/calls/handles.h"

/* Every function of the contract, made from its header: handles of all families, and what an
 * operation answers that no family has mapped to anything of this system. These answers are weak
 * symbols, so that a family maps an operation by just defining it. */

namespace {

template <typename Device, typename... Rest>
DeviceCode notMapped(Device *handle, const Rest &.../*unused*/) noexcept
{
    using namespace linuxunit;
    return isHandle(familyOf<Device>(), handle) ? NotSupported : InvalidHandle;
}

} // namespace

#define CONTRACT_CREATE(family, name, comment)                                    \
    family##Handle name(void)                                                     \
    {                                                                             \
        using namespace linuxunit;                                                \
        return static_cast<family##Handle>(createHandle(typeid(family##Handle))); \
    }
#define CONTRACT_RELEASE(family, name, comment)                   \
    void name(family##Handle handle)                              \
    {                                                             \
        linuxunit::releaseHandle(typeid(family##Handle), handle); \
    }
#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment) \
    __attribute__((weak)) DeviceCode name parameters                           \
    {                                                                          \
        return notMapped arguments;                                            \
    }
#include "devicetools/contractList.h"

const char *deviceErrorText(int32_t code)
{
    return linuxunit::errorText(code);
}
