#pragma once

#include <atomic>
#include <cstdint>

namespace check {

/** How bad a finding is. */
enum class Severity : std::int32_t { Fail, Warn, Skip };

/**
 * What a test's process tells the process that watches it, in memory that both have: it survives
 * whatever the library does to the test's process. Plain data, zero at the start.
 */
struct Channel {
    static constexpr int threadCount = 3;
    static constexpr int nameSize = 64;
    static constexpr int findingCount = 100;
    static constexpr int findingSize = 400;
    static constexpr int callCount = 160;
    static constexpr int valueCount = 6;
    static constexpr int textSize = 4096;
    static constexpr int slowCount = 40;

    /** What each thread of the test asks right now; empty between calls. */
    char current[threadCount][nameSize];
    /** Calls so far; while it stands still, the library is in a call or the test thinks. */
    std::atomic<std::uint64_t> calls;
    /** Set from outside: the test shall put back what it changed, and end. */
    std::atomic<bool> stop;
    /** Set by the test when all of it has been done. */
    std::atomic<bool> done;

    struct Finding {
        Severity severity;
        char text[findingSize];
    };
    Finding findings[findingCount];
    std::atomic<std::int32_t> found; ///< may be more than there is room for

    /** Operations that took longer than a second. */
    char slow[slowCount][nameSize];
    std::atomic<std::int32_t> slowFound;

    /** Calls that put back what the test changes, the last first. */
    struct Call {
        std::int32_t operation;         ///< index in contract::operations
        double numbers[valueCount];     ///< its In arguments, by the place of the argument
        std::int32_t texts[valueCount]; ///< its String arguments: where in `texts`
    };
    Call restoring[callCount];
    std::atomic<std::int32_t> toRestore;
    char texts[textSize];
    std::int32_t textsUsed;
};

} // namespace check
