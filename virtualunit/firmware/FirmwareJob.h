#pragma once

#include "frame/VornAux2.h"
#include "virtualunit/firmware/IntelHex.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace virtualunit {

/** The programmable controllers. */
enum class Controller { Fpga, SystemSupervisor, Front };

/** Bytes of memory that a controller has for its image. */
std::size_t memorySize(Controller controller);

/** The memories of the unit's controllers, as a job needs them. */
class ControllerMemory
{
public:
    virtual ~ControllerMemory() = default;
    /** Makes the image the one that the controller holds: wholly, or not at all on failure.
     */
    virtual Code store(Controller controller, const FirmwareImage &image) = 0;
    /** Whether it holds exactly this image: Ok, VerificationFailed, or another code. */
    virtual Code compare(Controller controller, const FirmwareImage &image) = 0;
};

/**
 * One run of programming or verifying. It has no thread: it goes on when it is asked how far it is.
 * Each question takes it at most one stage further, so that whoever follows it sees every stage.
 * The work of a stage is done when the stage's time is up; a fault is reported once in the stage in
 * which it came up and from then on as FIRMWARE_FAILED, both times with its code.
 */
class FirmwareJob
{
public:
    enum class Kind { Upgrade, Verification };

    /** @param now the unit's time in milliseconds. */
    FirmwareJob(Controller controller, Kind kind, std::filesystem::path path, std::int64_t now);

    /** Goes on and tells how far it is.
     *  @param now the unit's time; when the unit's clock was put back, no time has passed.
     *  @param duration of a whole job in milliseconds; with 0 each question is one stage. */
    FirmwareUpgradeStatus advance(
        std::int64_t now, std::int64_t duration, ControllerMemory &memory);

    /** False as soon as it is done or has failed. */
    bool isRunning() const;

private:
    Code finishStage(ControllerMemory &memory);
    Code readFile();
    Code convertFile();

    Controller controller;
    Kind kind;
    std::filesystem::path path;
    std::int64_t lastAsked; ///< the unit's time at the last question
    std::int64_t elapsed = 0;
    bool reported = false;
    FirmwareUpgradeStatus status{};
    std::string text;    ///< of the file, between reading and converting
    FirmwareImage image; ///< from converting on
};

} // namespace virtualunit
