#pragma once

#include <functional>
#include <vector>

namespace support {

/**
 * While this lives, the program's pauses on this thread pass at once and are written down, so that
 * a test knows of each and waits for none. Pauses of other threads last. One at a time.
 */
class SkippedPauses
{
public:
    /** @param note called at each pause */
    explicit SkippedPauses(std::function<void(int milliseconds)> note = {});
    ~SkippedPauses();
    SkippedPauses(const SkippedPauses &) = delete;
    SkippedPauses &operator=(const SkippedPauses &) = delete;

    /** The pauses since the last time, in milliseconds. */
    std::vector<int> take();
};

} // namespace support
