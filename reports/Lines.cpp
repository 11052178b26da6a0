#include "reports/Lines.h"

#include <cstring>
#include <utility>

namespace reports {

bool takeLine(std::string_view &text, Line &line)
{
    if (text.empty())
        return false;
    const std::string_view reach = text.substr(0, Lines::longest);
    const std::size_t end = reach.find('\n');
    line.ended = end != std::string_view::npos;
    line.text = reach.substr(0, end);
    // A carriage return may belong to the line feed behind it.
    if (!line.ended && reach.size() < text.size() && line.text.ends_with('\r'))
        line.text.remove_suffix(1);
    text.remove_prefix(line.ended ? end + 1 : line.text.size());
    if (line.ended && line.text.ends_with('\r'))
        line.text.remove_suffix(1);
    return true;
}

Lines::Lines(std::string_view bytes)
    : window(bytes)
    , complete(true)
{}

Lines::Lines(Read read)
    : source(std::move(read))
{}

bool Lines::next(Line &line)
{
    fill();
    return takeLine(window, line);
}

void Lines::fill()
{
    constexpr std::size_t wanted = 4 * longest;
    if (complete || window.size() >= wanted)
        return;
    buffer.resize(2 * wanted);
    std::size_t size = window.size();
    if (size > 0)
        std::memmove(buffer.data(), window.data(), size);
    while (!complete && size < buffer.size()) {
        const std::size_t count = source(buffer.data() + size, buffer.size() - size);
        complete = count == 0;
        size += count;
    }
    window = std::string_view(buffer).substr(0, size);
}

} // namespace reports
