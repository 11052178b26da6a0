#pragma once

#include <array>
#include <deque>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace trace {

/** Handles that the program gets in place of the real ones, so that each has a number even if a
 *  library gives the same pointer twice. A handle's address is never given out again, so that a
 *  released one is known for good. Any thread. */
class Handles
{
public:
    struct Found {
        unsigned number; ///< 1 for the family's first; 0 for what is no handle, or no more
        void *real;      ///< what the library takes for it
    };

    /** For a new handle of the library; a null one stays null and has no number. */
    void *add(std::size_t family, void *real, unsigned &number)
    {
        number = 0;
        if (!real)
            return nullptr;
        const std::lock_guard lock(mutex);
        number = ++lastNumbers[family];
        auto &record = records.emplace_back(Record{family, {number, real}});
        byAddress.emplace(&record, &record);
        return &record;
    }

    /** What was never a handle goes to the library as it is. */
    Found find(std::size_t family, void *handle) const
    {
        const std::lock_guard lock(mutex);
        const auto found = byAddress.find(handle);
        return found != byAddress.end() && found->second->family == family ? found->second->found
                                                                           : Found{0, handle};
    }

    void release(void *handle)
    {
        const std::lock_guard lock(mutex);
        const auto found = byAddress.find(handle);
        if (found != byAddress.end())
            found->second->found.number = 0;
    }

private:
    struct Record {
        std::size_t family;
        Found found;
    };
    mutable std::mutex mutex;
    std::deque<Record> records;
    std::unordered_map<const void *, Record *> byAddress;
    std::unordered_map<std::size_t, unsigned> lastNumbers;
};

} // namespace trace
