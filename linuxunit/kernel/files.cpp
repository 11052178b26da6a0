#include "linuxunit/kernel/files.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace linuxunit {

namespace {

constexpr std::size_t mostOfLine = 4096; ///< what the kernel gives at most

/** An open file; closed in the end. */
class File
{
public:
    File(const std::string &path, int flags)
        : descriptor(::open(rooted(path).c_str(), flags | O_CLOEXEC | O_NOCTTY))
    {}
    ~File()
    {
        if (descriptor >= 0)
            ::close(descriptor);
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    const int descriptor;
};

/** Error number, 0 for none. */
int readInto(std::string &bytes, const std::string &path, std::size_t limit)
{
    const File file(path, O_RDONLY);
    if (file.descriptor < 0)
        return errno;
    bytes.resize(limit);
    std::size_t count = 0;
    while (count < limit) {
        const auto got = ::read(file.descriptor, bytes.data() + count, limit - count);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return errno;
        if (got == 0)
            break;
        count += std::size_t(got);
    }
    bytes.resize(count);
    return 0;
}

/** The first line without blanks around and without the zero byte of a device tree. */
std::string firstLine(const std::string &bytes)
{
    const auto line = bytes.substr(0, bytes.find_first_of(std::string_view("\n\0", 2)));
    const auto first = line.find_first_not_of(" \t\r");
    if (first == line.npos)
        return {};
    return line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
}

/** "hwmon10" behind "hwmon2". */
bool isBefore(const std::string &one, const std::string &other)
{
    return ::strverscmp(one.c_str(), other.c_str()) < 0;
}

Failure noNumber(const std::string &path, const std::string &text)
{
    return {
        UnexpectedContent, path + " holds \"" + printable(text) + "\" where a number is expected"};
}

} // namespace

std::string rooted(const std::string &path)
{
    // Nodes stay: what stands behind them answers to their own names alone. And not where a program
    // has more rights than its user.
    if (path.starts_with("/dev/"))
        return path;
    const char *root = ::secure_getenv("VORNAUX_ROOT");
    return root ? root + path : path;
}

std::vector<std::string> namesIn(const std::string &folder)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> open(
        ::opendir(rooted(folder).c_str()), [](DIR *dir) { return dir ? ::closedir(dir) : 0; });
    if (!open)
        return names;
    while (const auto *entry = ::readdir(open.get())) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end(), isBefore);
    return names;
}

bool exists(const std::string &path)
{
    return ::access(rooted(path).c_str(), F_OK) == 0;
}

std::string linkName(const std::string &path)
{
    char target[PATH_MAX];
    const auto length = ::readlink(rooted(path).c_str(), target, sizeof target);
    if (length <= 0)
        return {};
    const std::string_view whole(target, std::size_t(length));
    return std::string(whole.substr(whole.rfind('/') + 1));
}

std::optional<std::string> textOf(const std::string &path)
{
    std::string bytes;
    if (readInto(bytes, path, mostOfLine) != 0)
        return std::nullopt;
    return firstLine(bytes);
}

std::string readText(const std::string &path)
{
    return firstLine(readWhole(path, mostOfLine));
}

std::string readWhole(const std::string &path, std::size_t limit)
{
    std::string bytes;
    if (const int number = readInto(bytes, path, limit))
        throw readFailure(path, number);
    return bytes;
}

std::int64_t numberIn(const std::string &path, const std::string &text)
{
    if (text.empty())
        throw Failure{NotAvailable, {}};
    std::int64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end)
        throw noNumber(path, text);
    return number;
}

double realIn(const std::string &path, const std::string &text)
{
    if (text.empty())
        throw Failure{NotAvailable, {}};
    double number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number))
        throw noNumber(path, text);
    return number;
}

std::int64_t readNumber(const std::string &path)
{
    return numberIn(path, readText(path));
}

double readReal(const std::string &path)
{
    return realIn(path, readText(path));
}

std::optional<std::int64_t> numberOf(const std::string &path)
{
    const auto text = textOf(path);
    std::int64_t number = 0;
    if (!text || text->empty())
        return std::nullopt;
    const char *const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<double> realOf(const std::string &path)
{
    const auto text = textOf(path);
    double number = 0;
    if (!text || text->empty())
        return std::nullopt;
    const char *const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    return error == std::errc() && stop == end && std::isfinite(number) ? std::optional(number)
                                                                        : std::nullopt;
}

void writeText(const std::string &path, std::string_view text, const std::string &remedy)
{
    // Truncating means nothing to the kernel, and to a test bed that the old value is gone.
    const File file(path, O_WRONLY | O_TRUNC);
    if (file.descriptor < 0)
        throw writeFailure(path, errno, remedy);
    ssize_t written = 0;
    do {
        written = ::write(file.descriptor, text.data(), text.size());
    } while (written < 0 && errno == EINTR);
    forgetReading(path);
    if (written < 0)
        throw writeFailure(path, errno, remedy);
    if (std::size_t(written) != text.size())
        throw writeFailure(path, EIO, remedy);
}

} // namespace linuxunit
