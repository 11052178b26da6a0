#include "linuxunit/kernel/regulators.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/texts.h"

namespace linuxunit {

namespace {

constexpr const char *consumers = "/sys/bus/platform/drivers/reg-userspace-consumer";
constexpr const char *regulators = "/sys/class/regulator";

/** Folder with the state of what has that name; empty if there is none. */
std::string folderOf(const std::string &parent, const std::string &wanted)
{
    for (const auto &name : namesIn(parent)) {
        auto folder = std::string(parent).append("/").append(name);
        if (exists(folder + "/state") &&
            (name == wanted || textOf(folder + "/name").value_or("") == wanted))
            return folder;
    }
    return {};
}

} // namespace

bool isRegulatorOn(const std::string &name)
{
    auto folder = folderOf(consumers, name);
    if (folder.empty())
        folder = folderOf(regulators, name);
    if (folder.empty())
        throw Failure{NotAvailable, {}};
    const auto state = readSlowText(folder + "/state"); // it may be behind a bus
    if (state == "enabled" || state == "disabled")
        return state == "enabled";
    if (state == "unknown" || state.empty())
        throw Failure{NotAvailable, {}};
    throw Failure{UnexpectedContent, folder + "/state tells of \"" + printable(state) + "\""};
}

void switchRegulator(const std::string &name, bool on)
{
    const auto folder = folderOf(consumers, name);
    if (!folder.empty())
        return writeText(folder + "/state", on ? "enabled" : "disabled", rulesRemedy);
    if (folderOf(regulators, name).empty())
        throw Failure{NotAvailable, {}};
    throw Failure{WriteFailed, latin1("The regulator " + name +
                                      " can't be switched from here; it takes a "
                                      "reg-userspace-consumer in the board's description")};
}

std::vector<std::string> switchableRegulators()
{
    std::vector<std::string> found;
    for (const auto &name : namesIn(consumers)) {
        const auto folder = std::string(consumers).append("/").append(name);
        if (exists(folder + "/state"))
            found.push_back(textOf(folder + "/name").value_or(name));
    }
    return found;
}

} // namespace linuxunit
