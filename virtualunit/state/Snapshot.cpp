#include "virtualunit/state/Snapshot.h"

namespace virtualunit {

Snapshot freshSnapshot(std::int64_t epoch)
{
    Snapshot snapshot;
    snapshot.epoch = epoch;
    snapshot.cells.reserve(propertyCount);
    for (const auto &property : properties)
        snapshot.cells.push_back({property.number, std::string(property.text), epoch, false});
    return snapshot;
}

} // namespace virtualunit
