#pragma once

#include "virtualunit/state/codes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace virtualunit {

/** What a controller's memory holds: all bytes from the first address on, gaps as erased flash. */
struct FirmwareImage {
    std::uint32_t address = 0;       ///< of the first byte
    std::vector<std::uint8_t> bytes; ///< empty for no image

    /** A number that tells images apart, over address and bytes (64 bit FNV-1a). */
    std::uint64_t digest() const;
    bool operator==(const FirmwareImage &) const = default;
};

/** The image of a text in Intel HEX, or what is wrong with it. */
struct IntelHexResult {
    Code code = Ok;       ///< Ok, else one of the File codes
    std::size_t line = 0; ///< number of the offending line, from 1; 0 if none is to blame
    std::string reason;   ///< what is wrong, one phrase; empty on success
    FirmwareImage image;  ///< empty on failure
};

/**
 * Reads Intel HEX strictly: record types 00 to 05, each with the length that its type has and a
 * true checksum, lines ended by LF or CRLF (the last one may lack it), no byte given twice, an end
 * record, and nothing but empty lines after it. A data record that would leave its segment (type
 * 02, or no address record at all) or the 32-bit address range is refused; in linear addressing
 * (type 04) it may run across a 64 KiB boundary.
 * @param memorySize bytes that the controller has; the distance from the first byte of the file to
 *        its last one must fit in there. Where in the address range they lie doesn't matter.
 */
IntelHexResult readIntelHex(std::string_view text, std::size_t memorySize);

} // namespace virtualunit
