#include "linuxunit/calls/Failure.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>

namespace linuxunit {

namespace {

constexpr DeviceCode firstWithSentence = 100;
constexpr DeviceCode step = 1000;
constexpr DeviceCode mostSentences = 9999;

/** Sentences that were given a code. They only become more, so that their texts stay. */
struct Sentences {
    std::mutex mutex;
    std::map<std::string, DeviceCode> numbers;
    std::map<DeviceCode, const std::string *> texts; ///< by number; keys of the other map
};

/** Never destroyed: threads may still ask while the process ends. */
Sentences &sentences()
{
    static auto *const only = new Sentences;
    return *only;
}

const char *kindText(DeviceCode kind)
{
    switch (kind) {
    case Ok:
        return "No error";
    case GeneralFault:
        return "General error";
    case NotSupported:
        return "Not supported by this machine";
    case InvalidHandle:
        return "Invalid handle";
    case MissingArgument:
        return "Missing argument";
    case ValueOutOfRange:
        return "Value out of range";
    case NoSuchChannel:
        return "No such channel or setting";
    case NoSuchSensor:
        return "No such sensor";
    case NotAvailable:
        return "Not available at present";
    case AutomaticBacklight:
        return "Refused while the automatic backlight runs";
    case NoJob:
        return "No firmware job was started";
    case JobRunning:
        return "A firmware job is under way";
    case UnknownKey:
        return "No string is stored under this key";
    case NoPermission:
        return "No permission";
    case ReadFailed:
        return "Reading failed";
    case WriteFailed:
        return "Writing failed";
    case UnexpectedContent:
        return "Unexpected content";
    case ConfigurationWrong:
        return "The configuration file is wrong";
    case StoreFailed:
        return "The library's database can't be used";
    case InUse:
        return "In use by another program";
    case DaemonSilent:
        return "A system service doesn't answer";
    case DaemonRefused:
        return "A system service refused";
    default:
        return "Unknown error";
    }
}

} // namespace

DeviceCode codeOf(const Failure &failure)
{
    if (failure.kind < firstWithSentence || failure.sentence.empty())
        return failure.kind;
    auto &all = sentences();
    const std::lock_guard lock(all.mutex);
    auto found = all.numbers.find(failure.sentence);
    if (found == all.numbers.end()) {
        const auto number = DeviceCode(all.numbers.size()) + 1;
        if (number > mostSentences)
            return failure.kind;
        found = all.numbers.emplace(failure.sentence, number).first;
        all.texts.emplace(number, &found->first);
    }
    return found->second * step + failure.kind;
}

const char *errorText(DeviceCode code)
{
    if (code < step)
        return kindText(code);
    auto &all = sentences();
    const std::lock_guard lock(all.mutex);
    const auto found = all.texts.find(code / step);
    return found == all.texts.end() ? kindText(code % step) : found->second->c_str();
}

std::string errnoText(int number)
{
    const char *text = strerrordesc_np(number);
    return text ? text : "error " + std::to_string(number);
}

std::string printable(std::string_view text)
{
    constexpr std::size_t shown = 40;
    std::string beginning(text.substr(0, shown));
    for (char &byte : beginning) {
        if (byte < ' ' || byte > '~')
            byte = '?';
    }
    return beginning;
}

std::string roundedText(double number)
{
    constexpr double longest = 1e15;
    if (std::abs(number) < longest)
        return std::to_string(std::llround(number));
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    return {digits, end};
}

Failure readFailure(const std::string &path, int number)
{
    switch (number) {
    case EAGAIN:
    case ENODATA:
    case ENODEV:
    case ENXIO:
    case ENOENT:
    case EBUSY:
    case ETIMEDOUT:
    case EINVAL: // a thermal zone that is disabled; a reading has no argument that could be wrong
        return {NotAvailable, {}};
    case EACCES:
    case EPERM:
        return {NoPermission, "No permission to read " + path};
    default:
        return {ReadFailed, "Reading " + path + " failed: " + errnoText(number)};
    }
}

Failure writeFailure(const std::string &path, int number, const std::string &remedy)
{
    switch (number) {
    case ENODEV:
    case ENXIO:
    case ENOENT:
        return {NotAvailable, {}};
    case EACCES:
    case EPERM:
        return {NoPermission, "No permission to write " + path + "; " + remedy};
    case EROFS:
        return {NoPermission, "No permission to write " + path + ": " + errnoText(number)};
    case EBUSY:
        return {InUse, path + " is in use by another program"};
    default:
        return {WriteFailed, "Writing " + path + " failed: " + errnoText(number)};
    }
}

} // namespace linuxunit
