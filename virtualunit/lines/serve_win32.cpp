#include "virtualunit/lines/serve.h"

#include <stdexcept>

namespace virtualunit::lines {

const char *const serveLinesHelp =
    "Not on Windows, which has no pseudo-terminals: serve the lines on a Linux machine and connect "
    "it by a serial cable";

void serveLines(const std::filesystem::path &, const std::filesystem::path &)
{
    throw std::runtime_error(
        "Windows has no pseudo-terminals to serve lines on. Serve them on a Linux machine and "
        "connect it by a serial cable");
}

} // namespace virtualunit::lines
