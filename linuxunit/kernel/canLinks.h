#pragma once

#include <cstdint>
#include <string>
#include <vector>

/** CAN interfaces, as the kernel tells of them by rtnetlink. A library that looks at another root
 *  asks what listens at /run/vornaux/rtnetlink there, and never this machine's kernel. Failures are
 *  thrown. Any thread. */
namespace linuxunit {

struct CanLink {
    int index;
    std::string name;
    bool isUp;
    bool hasBitRate;       ///< false for virtual ones
    std::uint32_t bitRate; ///< bit/s; 0 if it was never set
};

/** All of them, by name, with numbers in their order. */
std::vector<CanLink> canLinks();

/** Sets a bit rate. The kernel takes it from an interface that is down alone: one that is up goes
 *  down for it and up again, with its old rate if the new one isn't taken. @param bitRate bit/s */
void setBitRate(const CanLink &link, std::uint32_t bitRate);

} // namespace linuxunit
