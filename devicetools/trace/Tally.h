#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace trace {

/** What a program's calls came to: counted in the program, read by vorntrace when the program is
 *  gone, however it went. It lies in a file that both have in memory. Any thread. */
class Tally
{
public:
    /** A file of zeros becomes a tally; the file stays. Null if that can't be. */
    static std::unique_ptr<Tally> open(const std::filesystem::path &file);
    ~Tally();
    Tally(const Tally &) = delete;
    Tally &operator=(const Tally &) = delete;

    void addCall() { counts->calls.fetch_add(1, std::memory_order_relaxed); }
    /** A call that is not in the trace; the first one's question is kept, as far as it fits. */
    void addUnknown(std::string_view question);

    std::uint64_t calls() const { return counts->calls; }
    std::uint64_t unknown() const { return counts->unknown; }
    std::string firstUnknown() const;

private:
    struct Counts {
        std::atomic<std::uint64_t> calls;
        std::atomic<std::uint64_t> unknown;
        char firstUnknown[200];
    };
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

    explicit Tally(Counts *mapped)
        : counts(mapped)
    {}

    Counts *counts;
};

} // namespace trace
