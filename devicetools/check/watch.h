#pragma once

#include "devicetools/check/tests.h"

#include <set>
#include <string>
#include <vector>

namespace check {

enum class Result { Pass, Fail, Warn, Skip };

struct Outcome {
    Result result = Result::Pass;
    std::vector<std::string> findings; ///< of the result's severity
};

/** Thrown when the library can't be loaded; says why. */
struct CannotBegin {
    std::string reason;
};

/**
 * Runs tests, each in a process of its own, and knows what one of them teaches for the next:
 * operations that don't come back are asked once and never again.
 */
class Watch
{
public:
    explicit Watch(Options given);

    /** Looks whether the library can be loaded; throws CannotBegin. */
    void begin();
    /** Ends this process, what was changed put back, if somebody interrupts it. */
    Outcome run(const Test &test);

private:
    Options options;
    std::set<std::string> slow;
    std::string broken; ///< why no test can run at all
};

/** The part of a test's process: the arguments are those that Watch gave it. */
int runTestProcess(const std::vector<std::string> &arguments);
/** Whether this process is one. */
bool isTestProcess(const std::vector<std::string> &arguments);

} // namespace check
