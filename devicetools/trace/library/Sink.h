#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace trace {

/** Where the lines of a trace go. */
class Sink
{
public:
    virtual ~Sink() = default;
    /** Appends all of it, by one write as long as the system takes it whole. Says what went wrong,
     *  empty if nothing did. */
    virtual std::string append(std::string_view line) = 0;

    /** A file, or standard error for an empty name: as it is now, whatever the program does to it
     *  later. Null with a sentence in `error` if it can't be opened. */
    static std::unique_ptr<Sink> open(const std::string &file, std::string &error);
};

} // namespace trace
