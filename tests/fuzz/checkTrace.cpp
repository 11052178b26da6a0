#include "devicetools/trace/Trace.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/require.h"

namespace {

std::string written(const trace::Trace &trace)
{
    std::string text;
    for (const auto &call : trace.calls) {
        const auto line = call.line();
        REQUIRE(line.find('\n') == std::string::npos);
        text += line + "\n";
    }
    return text;
}

} // namespace

void checkTrace(const std::uint8_t *bytes, std::size_t size)
{
    // A copy of its own, so that a step across its end is seen.
    const std::string copy(reinterpret_cast<const char *>(bytes), size);
    trace::looksLikeTrace(copy);
    try {
        const auto first = trace::read(copy);
        // Times lose what is behind their sixth digit, once.
        const auto text = written(first);
        const auto second = trace::read(text);
        REQUIRE(second.warning.empty());
        REQUIRE(second.calls.size() == first.calls.size());
        REQUIRE(written(second) == text);
        for (std::size_t number = 0; number < first.calls.size(); ++number)
            REQUIRE(second.calls[number].question() == first.calls[number].question());
    } catch (const trace::Unreadable &unreadable) {
        REQUIRE(std::string(unreadable.what()).rfind("line ", 0) == 0);
    }
}
