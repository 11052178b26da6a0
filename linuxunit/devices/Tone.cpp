#include "linuxunit/devices/Tone.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/machine/Machine.h"
#include "linuxunit/store/Store.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace linuxunit {

namespace {

constexpr const char *inputs = "/sys/class/input";
constexpr const char *keptFrequency = "Buzzer.frequency";
constexpr std::uint16_t lowest = 700;
constexpr std::uint16_t highest = 10000;
constexpr std::uint16_t firstFrequency = 1000; ///< until somebody sets another

/** An open node of the device. */
class Node
{
public:
    Node(const std::string &path, int flags)
        : descriptor(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK))
    {
        if (descriptor < 0)
            throw writeFailure(path, errno, "add yourself to group input or install the rules");
    }
    ~Node() { ::close(descriptor); }
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    const int descriptor;
};

bool hasTones(const std::string &folder)
{
    const auto mask = textOf(folder + "/capabilities/snd").value_or("");
    unsigned bits = 0;
    std::from_chars(mask.data(), mask.data() + mask.size(), bits, 16);
    return (bits >> unsigned(SND_TONE) & 1U) != 0;
}

std::string nodeIn(const std::string &folder)
{
    for (const auto &name : namesIn(folder)) {
        if (name.starts_with("event"))
            return "/dev/input/" + name;
    }
    return {};
}

void sendTone(const std::string &node, int hertz)
{
    const Node open(node, O_WRONLY);
    input_event event{};
    event.type = EV_SND;
    event.code = SND_TONE;
    event.value = hertz;
    if (::write(open.descriptor, &event, sizeof event) != ssize_t(sizeof event))
        throw writeFailure(node, errno, "add yourself to group input or install the rules");
}

} // namespace

Tone::Device Tone::find()
{
    const auto wanted = Machine::present()->text("buzzer", "device");
    for (const auto &entry : namesIn(inputs)) {
        const auto folder = std::string(inputs).append("/").append(entry);
        if (!entry.starts_with("input") || !hasTones(folder))
            continue;
        auto found = textOf(folder + "/name").value_or("");
        auto node = nodeIn(folder);
        if (node.empty() || (!wanted.empty() && found != wanted))
            continue;
        wasThere = true;
        return {std::move(found), std::move(node)};
    }
    throw Failure{wasThere || !wanted.empty() ? NotAvailable : NotSupported, {}};
}

std::string Tone::name()
{
    return find().name;
}

std::uint16_t Tone::frequency()
{
    find();
    const auto hertz = Store().number(keptFrequency, firstFrequency);
    return std::uint16_t(std::clamp<double>(std::round(hertz), lowest, highest));
}

void Tone::setFrequency(std::uint16_t hertz)
{
    const auto device = find();
    if (hertz < lowest || hertz > highest)
        throw Failure{ValueOutOfRange, {}};
    bool sounds = false;
    try {
        sounds = isSounding();
    } catch (const Failure &failure) {
        // Whoever can't be asked doesn't sound by us; the next tone has the new frequency.
        if (failure.kind != NotAvailable)
            throw;
    }
    Store().setNumber(keptFrequency, hertz);
    if (sounds)
        sendTone(device.node, hertz);
}

bool Tone::isSounding()
{
    const auto device = find();
    const Node open(device.node, O_RDONLY);
    constexpr std::size_t size = SND_MAX / CHAR_BIT + 1;
    unsigned char bits[size] = {};
    if (::ioctl(open.descriptor, EVIOCGSND(size), bits) < 0)
        throw readFailure(device.node, errno);
    return (bits[SND_TONE / CHAR_BIT] >> unsigned(SND_TONE % CHAR_BIT) & 1U) != 0;
}

void Tone::sound(bool on)
{
    sendTone(find().node, on ? frequency() : 0);
}

} // namespace linuxunit
