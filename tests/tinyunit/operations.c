/* Every function of the contract but those for texts, made of what the unit says in tinyunit.h. */

#include "tinyunit.h"

#define CONTRACT_CREATE(family, name, comment) \
    family##Handle name(void)                  \
    {                                          \
        return device();                       \
    }
#define CONTRACT_RELEASE(family, name, comment) \
    void name(family##Handle handle)            \
    {                                           \
        (void)handle;                           \
    }
#define CONTRACT_IN(type, name) (void)name;
#define CONTRACT_STRING(name) (void)name;
#define CONTRACT_OUT(type, name) fill(name, sizeof *name);
#define CONTRACT_RECORD(type, name) fill(name, sizeof *name);
#define CONTRACT_BUFFER(name, size) fill(name, size);
#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment) \
    DeviceCode name parameters                                                 \
    {                                                                          \
        (void)handle;                                                          \
        each;                                                                  \
        return answer();                                                       \
    }
#include "devicetools/contractList.h"
