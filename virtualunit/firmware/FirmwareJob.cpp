#include "virtualunit/firmware/FirmwareJob.h"

#include <algorithm>
#include <fstream>
#include <utility>

namespace virtualunit {

namespace {

constexpr std::size_t mebibyte = std::size_t{1024} * 1024;
/** Text bytes that a byte of memory may take: four are usual, with very short records it is more.
 */
constexpr std::size_t textPerByte = 8;

/** Where a stage ends, in percent of the whole job. Verifying alone passes over the flashing. */
constexpr std::uint8_t upgradeEnds[] = {2, 10, 18, 25, 80, 99};
constexpr std::uint8_t verificationEnds[] = {4, 20, 40, 55, 55, 99};

bool isFinal(std::int32_t state)
{
    return state == FIRMWARE_DONE || state == FIRMWARE_FAILED;
}

} // namespace

std::size_t memorySize(Controller controller)
{
    return controller == Controller::Fpga ? 16 * mebibyte : mebibyte;
}

FirmwareJob::FirmwareJob(Controller target, Kind what, std::filesystem::path file, std::int64_t now)
    : controller(target)
    , kind(what)
    , path(std::move(file))
    , lastAsked(now)
{}

bool FirmwareJob::isRunning() const
{
    return status.errorCode == 0 && status.state != FIRMWARE_DONE;
}

FirmwareUpgradeStatus FirmwareJob::advance(
    std::int64_t now, std::int64_t duration, ControllerMemory &memory)
{
    if (!std::exchange(reported, true) || isFinal(status.state))
        return status;
    if (status.errorCode != 0) {
        status.state = FIRMWARE_FAILED;
        return status;
    }
    elapsed += std::max<std::int64_t>(0, now - std::exchange(lastAsked, now));
    const auto &ends = kind == Kind::Upgrade ? upgradeEnds : verificationEnds;
    const auto end = ends[status.state];
    // In quotients, so that no duration makes the product overflow.
    const auto percent = elapsed >= duration
                             ? std::int64_t{100}
                             : std::int64_t(100 * (double(elapsed) / double(duration)));
    if (percent < end) {
        status.percent = std::max(status.percent, std::uint8_t(percent));
        return status;
    }
    status.percent = end;
    status.errorCode = finishStage(memory);
    if (status.errorCode != 0)
        return status;
    const bool skipsFlashing = kind == Kind::Verification && status.state == FIRMWARE_CONVERTING;
    status.state = skipsFlashing ? FIRMWARE_VERIFYING : status.state + 1;
    if (status.state == FIRMWARE_DONE)
        status.percent = 100;
    return status;
}

Code FirmwareJob::finishStage(ControllerMemory &memory)
{
    switch (status.state) {
    case FIRMWARE_READING:
        return readFile();
    case FIRMWARE_CONVERTING:
        return convertFile();
    case FIRMWARE_VERIFYING:
        // An upgrade is stored in one go at its very end: a unit that loses its power in the
        // middle of one comes up with the image that it had.
        return kind == Kind::Upgrade ? memory.store(controller, image)
                                     : memory.compare(controller, image);
    default:
        return Ok;
    }
}

Code FirmwareJob::readFile()
{
    std::error_code error;
    const auto found = std::filesystem::status(path, error);
    if (found.type() == std::filesystem::file_type::not_found)
        return FileNotFound;
    // Anything but a plain file could keep the reader waiting for ever.
    if (found.type() != std::filesystem::file_type::regular)
        return FileUnreadable;
    const auto limit = memorySize(controller) * textPerByte;
    const auto size = std::filesystem::file_size(path, error);
    if (error)
        return FileUnreadable;
    if (size > limit)
        return FileTooLarge;
    std::ifstream stream(path, std::ios::binary);
    text.resize(std::size_t(size));
    if (!stream.read(text.data(), std::streamsize(text.size())))
        return FileUnreadable;
    return Ok;
}

Code FirmwareJob::convertFile()
{
    auto result = readIntelHex(text, memorySize(controller));
    std::string().swap(text);
    image = std::move(result.image);
    return result.code;
}

} // namespace virtualunit
