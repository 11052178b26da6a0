#include "linuxunit/calls/perform.h"
#include "linuxunit/kernel/canLinks.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <nlohmann/json.hpp>

using namespace linuxunit;

namespace {

constexpr std::uint32_t kilo = 1000;

/** Nothing is kept: interfaces come and go. */
struct Channels {
};

/** Interface of a channel, from 1: as the configuration lists them, else the machine's own. */
CanLink linkOf(std::uint8_t channel)
{
    const auto machine = Machine::present();
    const auto &names = machine->part("can", "channels");
    auto links = canLinks();
    if (names.is_array()) {
        if (channel < 1 || channel > names.size())
            throw Failure{names.empty() ? NotSupported : NoSuchChannel, {}};
        const auto found = std::find_if(links.begin(), links.end(),
            [&](const CanLink &link) { return link.name == names[channel - 1U]; });
        if (found == links.end())
            throw Failure{NotAvailable, {}};
        return *found;
    }
    links.erase(std::remove_if(links.begin(), links.end(),
                    [](const CanLink &link) { return !link.hasBitRate; }),
        links.end());
    if (links.empty())
        throw Failure{NotSupported, {}};
    if (channel < 1 || channel > links.size())
        throw Failure{NoSuchChannel, {}};
    return links[channel - 1U];
}

std::uint16_t rateOf(const CanLink &link)
{
    if (!link.hasBitRate)
        throw Failure{NotSupported, {}};
    const auto rate = (link.bitRate + kilo / 2) / kilo;
    if (rate == 0 || rate > UINT16_MAX)
        throw Failure{NotAvailable, {}};
    return std::uint16_t(rate);
}

} // namespace

/* Every socket takes the frames that it wants; the frame type of a channel is no setting, and its
 * operations answer 2. */

DeviceCode Can_getBaudrate(CanHandle handle, uint8_t channel, uint16_t *kbitPerSecond)
{
    return perform(handle, {kbitPerSecond},
        [&](Channels & /*unused*/) { *kbitPerSecond = rateOf(linkOf(channel)); });
}

DeviceCode Can_setBaudrate(CanHandle handle, uint8_t channel, uint16_t kbitPerSecond)
{
    return perform(handle, {}, [&](Channels & /*unused*/) {
        const auto link = linkOf(channel);
        if (!link.hasBitRate)
            throw Failure{NotSupported, {}};
        if (kbitPerSecond == 0)
            throw Failure{ValueOutOfRange, {}};
        // What it runs at stays as it is: 33.3 kbit/s wouldn't come back from 33.
        if (link.bitRate != 0 && rateOf(link) == kbitPerSecond)
            return;
        setBitRate(link, kbitPerSecond * kilo);
    });
}
