#include "linuxunit/calls/handles.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace linuxunit {

namespace {

struct Record {
    Family family;
    std::map<std::type_index, std::shared_ptr<void>> kept;
};

struct Registry {
    std::mutex mutex;
    // Grows with each handle: an address is never used again, so that a stale handle stays unknown.
    std::deque<char> addresses;
    std::unordered_map<const void *, Record> records;
    std::map<Runner, std::vector<void (*)()>> hooks;

    Record *find(Family family, const void *handle)
    {
        const auto found = records.find(handle);
        return found != records.end() && found->second.family == family ? &found->second : nullptr;
    }
};

/** Never destroyed: threads may still call while the process ends. */
Registry &registry()
{
    static auto *const only = new Registry;
    return *only;
}

} // namespace

void *createHandle(Family family) noexcept
{
    try {
        auto &all = registry();
        const std::lock_guard lock(all.mutex);
        void *handle = &all.addresses.emplace_back();
        all.records.emplace(handle, Record{family, {}});
        return handle;
    } catch (const std::exception &) {
        return nullptr;
    }
}

void releaseHandle(Family family, const void *handle) noexcept
{
    try {
        auto &all = registry();
        std::map<std::type_index, std::shared_ptr<void>> objects; // end outside of the lock
        std::map<Runner, std::vector<void (*)()>> hooks;
        {
            const std::lock_guard lock(all.mutex);
            auto *record = all.find(family, handle);
            if (!record)
                return;
            objects = std::move(record->kept);
            all.records.erase(handle);
            if (all.records.empty())
                hooks = all.hooks;
        }
        objects.clear(); // may wait for a thread
        for (const auto &[runner, functions] : hooks) {
            for (auto *hook : functions)
                hook();
        }
    } catch (const std::exception &) {
        // Nobody to tell.
    }
}

bool isHandle(Family family, const void *handle)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    return all.find(family, handle) != nullptr;
}

std::shared_ptr<void> kept(Family family, const void *handle, std::type_index type)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    const auto *record = all.find(family, handle);
    if (!record)
        return nullptr;
    const auto found = record->kept.find(type);
    return found == record->kept.end() ? nullptr : found->second;
}

void keep(Family family, const void *handle, std::type_index type, std::shared_ptr<void> object)
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    if (auto *record = all.find(family, handle))
        record->kept[type] = std::move(object);
}

void atLastRelease(Runner runner, void (*function)())
{
    auto &all = registry();
    const std::lock_guard lock(all.mutex);
    auto &hooks = all.hooks[runner];
    if (std::find(hooks.begin(), hooks.end(), function) == hooks.end())
        hooks.push_back(function);
}

} // namespace linuxunit
