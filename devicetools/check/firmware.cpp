#include "devicetools/check/tests.h"

#include <algorithm>
#include <cstddef>

namespace check {

namespace {

/** Follows a verification to its end. Only verifications are ever started. */
struct Job {
    FirmwareUpgradeStatus last{};
    std::string broken; ///< what went against the contract on the way
    DeviceCode started = DEVICE_OK;
};

Job verify(Session &session, const char *operation, const std::string &path)
{
    Job job;
    auto start = question(operation, {0});
    start.given[1] = contract::textValue(path.c_str());
    job.started = session.ask(start).code;
    if (job.started != DEVICE_OK)
        return job;
    const auto ask = question("Firmware_getUpgradeStatus", {1});
    constexpr int patience = 20; // questions that are waited for the last state behind an error
    int state = 0;
    int percent = 0;
    int failed = 0;
    do {
        const auto answer = session.ask(ask);
        if (answer.code != DEVICE_OK) {
            job.broken = "Firmware_getUpgradeStatus answered " + std::to_string(answer.code) +
                         ", where the record is to tell how the job ended";
            return job;
        }
        std::copy_n(answer.written[1].begin(), sizeof job.last,
            reinterpret_cast<unsigned char *>(&job.last));
        if (job.last.percent > 100)
            job.broken = "the record told " + std::to_string(job.last.percent) + " percent";
        else if (job.last.state < state || (job.last.state == state && job.last.percent < percent))
            job.broken = "the record went back from state " + std::to_string(state) + ", " +
                         std::to_string(percent) + " percent, to state " +
                         std::to_string(job.last.state) + ", " + std::to_string(job.last.percent) +
                         " percent";
        state = job.last.state;
        percent = job.last.percent;
        failed += job.last.errorCode == DEVICE_OK ? 0 : 1;
    } while (job.last.state < FIRMWARE_DONE && failed < patience && job.broken.empty());
    return job;
}

bool endsIn(const std::string &path, std::string_view ending)
{
    return path.size() >= ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), path.rbegin(), [](char one, char other) {
               return one == (other >= 'A' && other <= 'Z' ? other - 'A' + 'a' : other);
           });
}

void checkFile(Session &session, const char *operation)
{
    if (!session.has(operation))
        return;
    const auto job = verify(session, operation, session.options.firmware);
    if (job.started == DEVICE_NOT_SUPPORTED)
        return;
    if (job.started != DEVICE_OK)
        return session.fail(std::string(operation) + " answered " + std::to_string(job.started));
    if (!job.broken.empty())
        return session.fail(std::string(operation) + ": " + job.broken);
    if ((job.last.state == FIRMWARE_DONE) != (job.last.errorCode == DEVICE_OK))
        return session.fail(std::string(operation) + " ended in state " +
                            std::to_string(job.last.state) + " with error code " +
                            std::to_string(job.last.errorCode));
    if (job.last.state != FIRMWARE_DONE)
        session.warn(std::string(operation) + " found error " + std::to_string(job.last.errorCode) +
                     ": " +
                     session.textOf(
                         *contract::find(contract::texts, "deviceErrorText"), job.last.errorCode));
}

} // namespace

void verifiesFile(Session &session)
{
    session.load();
    if (endsIn(session.options.firmware, "mcs")) {
        checkFile(session, "Firmware_startFpgaVerification");
    } else {
        checkFile(session, "Firmware_startSSVerification");
        checkFile(session, "Firmware_startFrontVerification");
    }
}

void missingFileFails(Session &session)
{
    session.load();
    for (const char *operation : {"Firmware_startFpgaVerification", "Firmware_startSSVerification",
             "Firmware_startFrontVerification"}) {
        if (!session.has(operation))
            continue;
        const auto job = verify(session, operation,
            operation == std::string_view("Firmware_startFpgaVerification")
                ? "/no such folder/vorncheck.mcs"
                : "/no such folder/vorncheck.hex");
        if (job.started == DEVICE_NOT_SUPPORTED)
            continue;
        if (job.started != DEVICE_OK)
            session.fail(std::string(operation) + " answered " + std::to_string(job.started) +
                         ", where the record is to tell that there is no file");
        else if (!job.broken.empty())
            session.fail(std::string(operation) + ": " + job.broken);
        else if (job.last.state != FIRMWARE_FAILED || job.last.errorCode == DEVICE_OK)
            session.fail(std::string(operation) + " ended in state " +
                         std::to_string(job.last.state) + " with error code " +
                         std::to_string(job.last.errorCode) + ", where there is no file");
    }
}

} // namespace check
