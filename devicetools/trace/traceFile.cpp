#include "devicetools/trace/traceFile.h"

#include "platform/system.h"

#include <fstream>
#include <iterator>
#include <system_error>

namespace trace {

Trace readFile(const std::string &file)
{
    const auto path = platform::pathOf(file);
    const auto beginning = "The trace \"" + file + "\"";
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw Unreadable(beginning + " is a folder");
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw Unreadable(beginning + " can't be read");
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (stream.bad())
        throw Unreadable(beginning + " can't be read");
    try {
        auto trace = read(bytes);
        if (!trace.warning.empty())
            trace.warning = beginning + ", " + trace.warning;
        return trace;
    } catch (const Unreadable &unreadable) {
        throw Unreadable(beginning + ", " + unreadable.what());
    }
}

} // namespace trace
