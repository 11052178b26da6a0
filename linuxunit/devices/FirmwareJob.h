#pragma once

#include "frame/VornAux2.h"
#include "linuxunit/bus/Bus.h"

#include <memory>
#include <optional>
#include <string>

namespace linuxunit {

/** Parts of the contract that firmware is written to. */
enum class FirmwareTarget { Fpga, Supervisor, Front };

/** Version of the device that the section `firmware` names for the target, as fwupd tells it;
 * nothing if it names none. 18 for a device that isn't there. */
std::optional<std::string> installedVersion(FirmwareTarget target);

/**
 * Firmware written by fwupd, which knows the machine's own way: a cabinet file is handed to it, and
 * what it tells on the way becomes the contract's states, which never go back. One job in a
 * process. One thread at a time.
 */
class FirmwareJob
{
public:
    ~FirmwareJob();

    /** Begins to install the cabinet file on the device that the section `firmware` names for the
     *  target. The supervisor's stands for whatever the file fits if nothing is named; the other
     * two are 2 then. JobRunning while one is under way. @param path Latin-1 */
    void start(FirmwareTarget target, const char *path);
    /** @param wait for news, 100 ms at most. NoJob if none was started. */
    FirmwareUpgradeStatus status(bool wait);

private:
    void follow();
    void end(FirmwareState state, DeviceCode code);

    std::optional<BusJob> job;
    std::optional<FirmwareUpgradeStatus> last;
    bool isTold = true; ///< whether `last` has been asked for
};

} // namespace linuxunit
