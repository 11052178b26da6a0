#pragma once

#include <span>

namespace support {

/** The codes that every operation is tried with: the device's special ones and faults, the last of
 *  which looks like "not supported" in 8 and in 16 bits. */
inline constexpr int failureCodes[] = {2, 18, 20, 5, -1, 65538};
/** Those of them that are faults wherever they come up: all but "not supported". */
inline constexpr std::span faultCodes = std::span(failureCodes).subspan(1);

} // namespace support
