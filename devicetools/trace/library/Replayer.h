#pragma once

#include "devicetools/trace/Settings.h"
#include "devicetools/trace/Tally.h"
#include "devicetools/trace/Trace.h"
#include "devicetools/trace/library/Device.h"
#include "devicetools/trace/library/Handles.h"

#include <unordered_map>

namespace trace {

/** Answers from a trace: the next recorded answer to the same question, the last one from then on,
 *  and "not supported" to what was never asked. */
class Replayer : public Device
{
public:
    /** Throws std::exception when the trace can't be read. */
    explicit Replayer(const Settings &settings);

    void *create(std::size_t family) override;
    void release(std::size_t family, void *handle) override;
    DeviceCode perform(std::size_t family, std::size_t operation, contract::Value *values) override;
    const char *text(std::size_t text, std::int64_t number) override;

private:
    struct Answers {
        std::vector<const Call *> calls;
        std::size_t next = 0;
    };
    struct Answer {
        const Call *call; ///< null for what was never asked
        bool isUsedUp;    ///< it was given before
    };

    const bool times;
    const std::unique_ptr<Tally> tally;
    const Trace trace;
    std::mutex mutex; ///< of the answers
    std::unordered_map<std::string, Answers> answers;
    Handles handles;

    Answer answerTo(const std::string &question);
};

} // namespace trace
