#pragma once

#include <cstdint>
#include <string>

namespace linuxunit {

/**
 * The storage devices that are part of the machine, as UDisks2 knows them: those that the section
 * `smart` names, else what can't be taken out, in the service's own order. Every call looks at what
 * is there now. `number` counts from 0; a device that isn't there is 2. One thread at a time.
 */
class Drives
{
public:
    /** 2 for a device without one. */
    std::string serial(unsigned number) const;
    /** Percent that are left of what the maker gives it: of NVMe the percentage used, of ATA the
     *  wear attribute, of eMMC the register. 2 for a device that tells of no wear, 18 if it hasn't
     *  been asked yet. */
    std::uint8_t lifetime(unsigned number) const;
};

} // namespace linuxunit
