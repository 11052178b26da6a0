#include "linuxunit/kernel/texts.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"

#include <algorithm>
#include <charconv>

namespace linuxunit {

namespace {

constexpr std::string_view placeholders[] = {"", "--", "0", "000000", "0123456789", "123456789",
    "Default string", "Default String", "Invalid", "INVALID", "N/A", "NA", "None", "Not Applicable",
    "Not Available", "Not Specified", "OEM", "System manufacturer", "System Product Name",
    "System Serial Number", "System Version", "To be filled by O.E.M.", "To Be Filled By O.E.M.",
    "Type1ProductConfigId", "Unknown", "unknown", "Unknown Product", "x.x", "SKU", "empty"};

constexpr std::size_t longestAssignments = 65536;

} // namespace

std::string latin1(std::string_view utf8)
{
    std::string text;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const auto follower = [&](std::size_t place) {
            return place < utf8.size() &&
                   (static_cast<unsigned char>(utf8[place]) & 0xC0U) == 0x80U;
        };
        if (byte < 0x80U) {
            text += char(byte);
        } else if ((byte == 0xC2U || byte == 0xC3U) && follower(i + 1)) {
            ++i;
            text += char(((byte & 3U) << 6U) | (static_cast<unsigned char>(utf8[i]) & 0x3FU));
        } else {
            text += '?';
            while (follower(i + 1))
                ++i;
        }
    }
    return text;
}

std::string utf8(std::string_view latin1)
{
    std::string text;
    for (const char character : latin1) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80U) {
            text += character;
        } else {
            text += char(0xC0U | (byte >> 6U));
            text += char(0x80U | (byte & 0x3FU));
        }
    }
    return text;
}

bool isPlaceholder(std::string_view text)
{
    return std::find(std::begin(placeholders), std::end(placeholders), text) !=
           std::end(placeholders);
}

std::optional<std::array<std::uint8_t, 4>> versionIn(std::string_view text)
{
    std::array<std::uint8_t, 4> version{};
    std::size_t count = 0;
    const char *at = text.data();
    const char *const end = at + text.size();
    while (count < version.size() && at != end) {
        const auto [stop, error] = std::from_chars(at, end, version[count]);
        if (error == std::errc::result_out_of_range)
            return std::nullopt;
        if (error != std::errc())
            break;
        ++count;
        at = stop;
        if (at == end || (*at != '.' && *at != '-'))
            break;
        ++at;
    }
    return count > 0 ? std::optional(version) : std::nullopt;
}

std::optional<std::string> assignedIn(const std::string &path, std::string_view key)
{
    std::string all;
    try {
        all = readWhole(path, longestAssignments);
    } catch (const Failure &) {
        return std::nullopt;
    }
    const auto begin = std::string(key) + "=";
    for (std::size_t at = 0; at < all.size();) {
        const auto end = std::min(all.find('\n', at), all.size());
        std::string_view line(all.data() + at, end - at);
        at = end + 1;
        if (!line.starts_with(begin))
            continue;
        line.remove_prefix(begin.size());
        if (line.size() > 1 && (line.front() == '"' || line.front() == '\'') &&
            line.back() == line.front())
            line = line.substr(1, line.size() - 2);
        return std::string(line);
    }
    return std::nullopt;
}

} // namespace linuxunit
