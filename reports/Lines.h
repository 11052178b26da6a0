#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace reports {

/** A line without its end. Its text ends with the next call. */
struct Line {
    std::string_view text;
    bool ended = true; ///< by a line feed; else the bytes end here, or the line is too long
};

/**
 * Lines of bytes that come from memory or piece by piece, with a look ahead. Line feeds end lines,
 * alone or behind a carriage return. What is longer than longest comes in several pieces, so that
 * memory stays bounded whatever the bytes are.
 */
class Lines
{
public:
    static constexpr std::size_t longest = std::size_t{1} << 16;

    /** Of bytes that stay where they are for as long as this object. */
    explicit Lines(std::string_view bytes);

    /** Reads at most so many bytes to that place; returns their number, 0 at the end. */
    using Read = std::function<std::size_t(char *, std::size_t)>;
    explicit Lines(Read read);

    bool next(Line &line);

    /** The bytes behind the last line: all of them, or at least three times longest. */
    std::string_view ahead() const { return window; }
    /** Whether the texts of lines stay. */
    bool isInMemory() const { return !source; }
    /** Whether ahead() is all that comes. */
    bool endsAhead() const { return complete; }

private:
    void fill();

    Read source;
    std::string buffer;
    std::string_view window;
    bool complete = false;
};

/** Takes the first line off the text; false if there is none. */
bool takeLine(std::string_view &text, Line &line);

} // namespace reports
