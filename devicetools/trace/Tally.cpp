#include "devicetools/trace/Tally.h"

#include <algorithm>
#include <cstring>

namespace trace {

void Tally::addUnknown(std::string_view question)
{
    if (counts->unknown.fetch_add(1) > 0)
        return;
    const auto size = std::min(question.size(), sizeof counts->firstUnknown - 1);
    std::memcpy(counts->firstUnknown, question.data(), size);
}

std::string Tally::firstUnknown() const
{
    return counts->firstUnknown;
}

} // namespace trace
