#include "virtualunit/calls/handles.h"

#include "virtualunit/calls/Journal.h"

#include <deque>
#include <mutex>
#include <unordered_map>

namespace virtualunit {

namespace {

struct Record {
    Family family;
    unsigned number = 0;     ///< in the journal
    unsigned generation = 0; ///< of the journal that the number belongs to
    std::shared_ptr<void> kept;
};

struct Registry {
    std::mutex mutex;
    // Grows with each handle: an address is never used again, so that a stale handle stays unknown.
    std::deque<char> addresses;
    std::unordered_map<const void *, Record> records;
    std::unordered_map<Family, unsigned> lastNumbers;
    unsigned generation = 0;

    Record *find(Family family, const void *handle)
    {
        const auto found = records.find(handle);
        return found != records.end() && found->second.family == family ? &found->second : nullptr;
    }

    unsigned number(Record &record)
    {
        const auto current = journalGeneration();
        if (generation != current) {
            lastNumbers.clear();
            generation = current;
        }
        if (record.number == 0 || record.generation != current) {
            record.number = ++lastNumbers[record.family];
            record.generation = current;
        }
        return record.number;
    }
};

/** Never destroyed: threads may still call while the process ends. */
Registry &registry()
{
    static auto *const only = new Registry;
    return *only;
}

} // namespace

void *createHandle(const char *operation, Family family) noexcept
{
    try {
        auto &all = registry();
        void *handle = nullptr;
        {
            const std::lock_guard lock(all.mutex);
            handle = &all.addresses.emplace_back();
            all.records.emplace(handle, Record{family, 0, 0, nullptr});
        }
        if (journalRuns())
            journal(operation, {}, "#" + std::to_string(handleNumber(family, handle)), {}, {});
        return handle;
    } catch (const std::exception &) {
        return nullptr;
    }
}

void releaseHandle(const char *operation, Family family, const void *handle) noexcept
{
    try {
        if (journalRuns())
            journal(operation, handleNumber(family, handle), {}, {}, {});
    } catch (const std::exception &) {
        // The handle goes all the same.
    }
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    if (all.find(family, handle))
        all.records.erase(handle);
}

bool isHandle(Family family, const void *handle)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    return all.find(family, handle) != nullptr;
}

unsigned handleNumber(Family family, const void *handle)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    auto *record = all.find(family, handle);
    return record ? all.number(*record) : 0;
}

std::shared_ptr<void> kept(Family family, const void *handle)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    const auto *record = all.find(family, handle);
    return record ? record->kept : nullptr;
}

void keep(Family family, const void *handle, std::shared_ptr<void> object)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    if (auto *record = all.find(family, handle))
        record->kept = std::move(object);
}

} // namespace virtualunit
