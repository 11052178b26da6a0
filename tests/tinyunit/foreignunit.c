/* A device library that keeps to the contract's types and to nothing else: each call succeeds or
 * fails as it likes, and writes any value or none, whichever it answers. */

#include "foreignunit.h"
#include "tinyunit.h"

#include <stdatomic.h>
#include <string.h>

/* Several threads call. */
static _Atomic uint64_t state;

void seedForeignUnit(uint64_t seed)
{
    state = seed << 32;
}

/** splitmix64 */
static uint64_t draw(void)
{
    uint64_t value = (atomic_fetch_add(&state, 1) + 1) * 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

DeviceCode answer(void)
{
    static const DeviceCode codes[] = {2, 18, 20, 5, -1, 1, 3, 19, 255, 256, INT32_MAX, INT32_MIN};
    const uint64_t drawn = draw();
    return drawn % 3 != 0 ? DEVICE_OK : codes[(drawn >> 8) % (sizeof codes / sizeof *codes)];
}

void fill(void *value, size_t size)
{
    const double doubles[] = {0.0, -0.0, 1e-320, 0.5, 100.0, 1e9, -1e18, 1e300, -1e300,
        __builtin_inf(), -__builtin_inf(), __builtin_nan("")};
    unsigned char *bytes = value;
    const uint64_t drawn = draw();
    switch (drawn % 10) {
    case 0: /* as it was */
        break;
    case 1:
        memset(value, 0, size);
        break;
    case 2: /* -1, or the highest; a text without an end */
        memset(value, 0xFF, size);
        break;
    case 3: /* the highest or the lowest with a sign */
        memset(value, drawn >> 8 & 1 ? 0xFF : 0, size);
        bytes[size - 1] ^= 0x80;
        break;
    case 4:
    case 5:
    case 6: /* yes, on, or one of them */
        memset(value, 0, size);
        bytes[0] = 1;
        break;
    case 7: /* a number; a text of one letter */
        memset(value, 0, size);
        bytes[0] = (unsigned char)(drawn >> 8) % 130;
        break;
    case 8:
        if (size == sizeof *doubles) {
            memcpy(value, &doubles[(drawn >> 8) % (sizeof doubles / sizeof *doubles)], size);
            break;
        }
        /* fall through */
    default:
        for (size_t i = 0; i < size; ++i)
            bytes[i] = (unsigned char)draw();
    }
}

void *device(void)
{
    static char unit;
    return &unit;
}

static const char *anyText(void)
{
    static const char *const texts[] = {"", "an error", "%1 %2 %n", "caf\xE9 \xFF\x01",
        "<b>bold</b> &lt;", "one\nand more", "&Key"};
    return texts[draw() % (sizeof texts / sizeof *texts)];
}

const char *deviceErrorText(int32_t code)
{
    (void)code;
    return anyText();
}

const char *Diagnostics_startupReasonText(uint16_t reason)
{
    (void)reason;
    return anyText();
}

const char *Diagnostics_hwErrorText(uint16_t status)
{
    (void)status;
    return anyText();
}
