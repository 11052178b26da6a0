#pragma once

#include "virtualunit/state/Snapshot.h"

/**
 * How the unit lives: values as functions of what is stored and of the clock. Nothing runs in the
 * background. Between two changes that matter the stored state stands still, so each function knows
 * where its value started and for how long it has moved.
 */
namespace virtualunit::life {

/** The value of a property as the device reports it at that time. Not for texts. */
double valueAt(const Snapshot &unit, Key key, std::int64_t now);

/** True for values that go on from where they are: they must be settled before what drives them
 *  changes. */
bool accumulates(const Property &property);
/** Where such a value has come to, without noise and not rounded. */
double settledAt(const Snapshot &unit, Key key, std::int64_t now);

/** Illuminance through a filter of the light sensor, windows in samples. */
struct LightFilter {
    double averageWindow;
    double rejectWindow;
    double rejectDelta;
    int samplingMode;
};
double filteredLight(const Snapshot &unit, const LightFilter &filter, std::int64_t now);

} // namespace virtualunit::life
