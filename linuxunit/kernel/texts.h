#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace linuxunit {

/** What Latin-1 doesn't have becomes "?", and so do bytes that are no UTF-8. */
std::string latin1(std::string_view utf8);
/** As files and terminals have it. */
std::string utf8(std::string_view latin1);

/** What makers leave where a text should be, "To be filled by O.E.M." say: as good as none. */
bool isPlaceholder(std::string_view text);

/** The first four numbers of a version, "6.1.0-13-amd64" or "12 (bookworm)"; those that are missing
 *  are 0. Nothing without a number in front, or if one of them doesn't fit into a byte. */
std::optional<std::array<std::uint8_t, 4>> versionIn(std::string_view text);

/** Value of a key in a file of KEY=value lines, /etc/os-release or uevent, without quotes. */
std::optional<std::string> assignedIn(const std::string &path, std::string_view key);

} // namespace linuxunit
