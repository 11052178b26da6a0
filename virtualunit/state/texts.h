#pragma once

#include <cstdint>

/** The constant texts of the virtual unit. Never null, never freed; any thread. */
namespace virtualunit {

/** One English sentence without a full stop for a code, known (Code) or not. */
const char *errorText(std::int32_t code);

/** What started the computer: 1 to 9 have a meaning, all others are unknown. */
const char *startupReasonText(std::uint16_t reason);

/** The faults of a hardware error word, one for each bit, joined by commas; 0 is none. */
const char *hardwareErrorText(std::uint16_t status);

} // namespace virtualunit
