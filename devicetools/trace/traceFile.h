#pragma once

#include "devicetools/trace/Trace.h"

namespace trace {

/** The trace in that file, its name in UTF-8. Throws Unreadable; its text begins with the name. */
Trace readFile(const std::string &file);

} // namespace trace
