#include "linuxunit/kernel/brightness.h"

#include "linuxunit/kernel/files.h"

namespace linuxunit {

void writeBrightness(const std::string &subsystem, const std::string &name, std::int64_t level)
{
    const auto path = std::string("/sys/class/").append(subsystem).append("/").append(name);
    writeText(path + "/brightness", std::to_string(level), rulesRemedy);
}

} // namespace linuxunit
