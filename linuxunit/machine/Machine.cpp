#include "linuxunit/machine/Machine.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/machine/checkedJson.h"

#include <cstdlib>
#include <mutex>
#include <optional>
#include <sys/stat.h>

namespace linuxunit {

using nlohmann::json;

namespace {

/** What tells one state of a file from another. */
struct Stamp {
    dev_t device;
    ino_t inode;
    off_t size;
    timespec modified;

    bool operator==(const Stamp &other) const
    {
        return device == other.device && inode == other.inode && size == other.size &&
               modified.tv_sec == other.modified.tv_sec &&
               modified.tv_nsec == other.modified.tv_nsec;
    }
};

std::optional<Stamp> stampOf(const std::string &path)
{
    struct stat status {
    };
    if (::stat(rooted(path).c_str(), &status) != 0)
        return std::nullopt;
    return Stamp{status.st_dev, status.st_ino, status.st_size, status.st_mtim};
}

/** The file as it was last read. */
struct Loaded {
    std::mutex mutex;
    std::string path;
    std::optional<Stamp> stamp;
    std::shared_ptr<const Machine> machine;
    std::optional<Failure> failure;
};

/** Never destroyed: threads may still ask while the process ends. */
Loaded &loaded()
{
    static auto *const only = new Loaded;
    return *only;
}

void load(Loaded &file)
{
    file.machine.reset();
    file.failure.reset();
    try {
        file.machine = file.stamp
                           ? Machine::parse(readWhole(file.path, longestMachineFile), file.path)
                           : std::make_shared<const Machine>();
    } catch (const Failure &failure) {
        file.failure = failure;
    }
}

} // namespace

Machine::Machine()
    : whole(std::make_unique<json>(json::object()))
{}

Machine::~Machine() = default;

std::string machineFile()
{
    const char *given = ::secure_getenv("VORNAUX_CONFIG");
    return given ? given : "/etc/vornaux/unit.json";
}

std::shared_ptr<const Machine> Machine::present()
{
    auto &file = loaded();
    const std::lock_guard lock(file.mutex);
    const auto path = machineFile();
    const auto stamp = stampOf(path);
    if ((!file.machine && !file.failure) || path != file.path || stamp != file.stamp) {
        file.path = path;
        file.stamp = stamp;
        load(file);
    }
    if (file.failure)
        throw Failure(*file.failure);
    return file.machine;
}

std::shared_ptr<const Machine> Machine::parse(const std::string &text, const std::string &name)
{
    static const json schema = json::parse(machineSchema);
    auto machine = std::make_shared<Machine>();
    try {
        *machine->whole = parseChecked(text, schema);
    } catch (const JsonFault &fault) {
        throw Failure{ConfigurationWrong,
            name + ", line " + std::to_string(fault.line) + ": " + fault.reason};
    }
    return machine;
}

bool Machine::denies(std::string_view name) const
{
    const auto found = whole->find(name);
    return found != whole->end() && found->is_boolean();
}

const json &Machine::section(std::string_view name) const
{
    static const json none;
    const auto found = whole->find(name);
    if (found == whole->end())
        return none;
    if (denies(name))
        throw Failure{NotSupported, {}};
    return *found;
}

const json &Machine::part(std::string_view section, std::string_view name) const
{
    static const json none;
    const auto &parts = this->section(section);
    const auto found = parts.find(name);
    return found == parts.end() ? none : *found;
}

std::string Machine::text(std::string_view section, std::string_view name) const
{
    const auto &found = part(section, name);
    return found.is_string() ? found.get<std::string>() : std::string();
}

} // namespace linuxunit
