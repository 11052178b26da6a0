#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/**
 * The files by which the kernel tells of hardware. Paths are absolute, as on the running system;
 * all of these put VORNAUX_ROOT before them, which a test bed sets. Failures are thrown as Failure.
 * Any thread.
 */
namespace linuxunit {

/** Where a path of the running system lies: below VORNAUX_ROOT, if that is set and it is no node.
 */
std::string rooted(const std::string &path);

/** Names in a folder, sorted with numbers in their order (hwmon2 before hwmon10), without those
 *  that begin with a dot. Empty if there is no such folder. */
std::vector<std::string> namesIn(const std::string &folder);
bool exists(const std::string &path);
/** Last part of what a link leads to, "bus/platform/drivers/gpio-keys" gives "gpio-keys"; empty if
 *  it is no link. */
std::string linkName(const std::string &path);

/** First line of a file that the kernel answers at once: names, labels, limits, identity. Without
 *  blanks around. Nothing if there is no such file or it can't be read. At most 4 KiB. */
std::optional<std::string> textOf(const std::string &path);
/** The same, but what stands in the way of reading is thrown; a file that doesn't exist is 18. */
std::string readText(const std::string &path);
/** All bytes of a file, at most `limit`; a failure is thrown. */
std::string readWhole(const std::string &path, std::size_t limit);

/** A measured value. It may be slow to get, on a bus say: see Reading.h, which waits for it no
 * longer than a caller can. An empty file is 18; anything but a number, or one beyond what can be,
 * is UnexpectedContent. */
std::int64_t readNumber(const std::string &path);
double readReal(const std::string &path);
/** The same of a file that is there or not; nothing too if it can't be read at present. */
std::optional<std::int64_t> numberOf(const std::string &path);
std::optional<double> realOf(const std::string &path);

/** Writes a value as the kernel wants it, in one piece.
 *  @param remedy what the user can do about missing rights */
void writeText(const std::string &path, std::string_view text, const std::string &remedy);

/** The numbers as they stand in a text of such a file; thrown with the path if there is none. */
std::int64_t numberIn(const std::string &path, const std::string &text);
double realIn(const std::string &path, const std::string &text);

/** The remedy for what the rules give to the group of the library. */
inline constexpr const char *rulesRemedy =
    "add yourself to group vornaux or install the rules (70-vornaux.rules)";

} // namespace linuxunit
