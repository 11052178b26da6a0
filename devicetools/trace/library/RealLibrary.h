#pragma once

#include "devicetools/contract.h"

#include <string>

namespace trace {

/** The device library behind the tracing one. Any thread. */
class RealLibrary
{
public:
    /** That file, or the library that the program itself is bound to if there is no name. What
     *  can't be loaded ends the program with a sentence on standard error. */
    explicit RealLibrary(const std::string &file);

    /** A library without that function ends the program, as the system's loader would. */
    contract::Function function(const char *name) const;

private:
    void *library = nullptr;
};

/** Says why on standard error and ends the program at once, as one that can't be loaded. */
[[noreturn]] void giveUp(const std::string &reason);

} // namespace trace
