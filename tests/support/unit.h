#pragma once

#include "tests/support/literals.h"
#include "tests/support/operations.h"

#include "frame/DeviceHandle.h"
#include "virtualunit/VirtualUnit.h"

#include <QtTest>

/** What the tests of the virtual unit share: handles, codes, and the unit's values by name. */
namespace support {

using Hardware = DeviceHandle<Hardware_create, Hardware_release>;
using Adc = DeviceHandle<Adc_create, Adc_release>;
using Versions = DeviceHandle<Versions_create, Versions_release>;
using Backlight = DeviceHandle<Backlight_create, Backlight_release>;
using Buzzer = DeviceHandle<Buzzer_create, Buzzer_release>;
using Can = DeviceHandle<Can_create, Can_release>;
using Config = DeviceHandle<Config_create, Config_release>;
using Power = DeviceHandle<Power_create, Power_release>;
using Diagnostics = DeviceHandle<Diagnostics_create, Diagnostics_release>;
using Smart = DeviceHandle<Smart_create, Smart_release>;
using DigIO = DeviceHandle<DigIO_create, DigIO_release>;
using Firmware = DeviceHandle<Firmware_create, Firmware_release>;
using FrontLED = DeviceHandle<FrontLED_create, FrontLED_release>;
using LightSensor = DeviceHandle<LightSensor_create, LightSensor_release>;
using Telematics = DeviceHandle<Telematics_create, Telematics_release>;
using Touch = DeviceHandle<Touch_create, Touch_release>;
using Battery = DeviceHandle<Battery_create, Battery_release>;
using Settings = DeviceHandle<Settings_create, Settings_release>;

inline constexpr DeviceCode invalidHandle = 3;
inline constexpr DeviceCode missingArgument = 4;
inline constexpr DeviceCode outOfRange = 5;
inline constexpr DeviceCode noSuchChannel = 6;
inline constexpr DeviceCode noSuchSensor = 7;
inline constexpr DeviceCode stateUnavailable = 8;
inline constexpr DeviceCode stateDamaged = 9;
inline constexpr DeviceCode stateForeign = 10;
inline constexpr DeviceCode unknownKey = 26;

inline constexpr std::int64_t minute = 60'000;
inline constexpr std::int64_t hour = 60 * minute;
/** Midnight of a day long ago. */
inline constexpr std::int64_t midnight = 20'000 * 24 * hour;

inline QString text(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

inline void require(const virtualunit::Error &error)
{
    if (!error.empty())
        qFatal("%s", error.c_str());
}

inline void put(const char *name, const char *value)
{
    require(virtualunit::set(name, value));
}

inline QString value(const char *name)
{
    std::string found;
    require(virtualunit::get(name, found));
    return text(found);
}

/** What a getter with one out value gives; fails the test program on any code. */
template <typename Handle, typename T>
T read(DeviceCode (*getter)(Handle, T *), Handle handle)
{
    T result{};
    const auto code = getter(handle, &result);
    if (code != DEVICE_OK)
        qFatal("a getter gave %d", code);
    return result;
}

inline const void *handleFor(const char *operation)
{
    for (const auto &family : support::allFamilies) {
        if (QByteArray(operation).startsWith(QByteArray(family.name) + '_'))
            return family.create();
    }
    qFatal("no family for %s", operation);
    return nullptr;
}

/** The codes of operations that a test of features asks for, by name. */
inline DeviceCode codeOf(const QString &name)
{
    for (const auto &operation : support::allOperations) {
        if (name == QLatin1String(operation.name)) {
            support::Arguments arguments;
            return operation.call(handleFor(operation.name), arguments);
        }
    }
    qFatal("no operation %s", qPrintable(name));
    return -1;
}

/** A unit in memory for one test function: profile full, at noon, with a clock that stands. */
inline void freshUnit()
{
    virtualunit::stopJournal();
    require(virtualunit::open(":memory:"));
    require(virtualunit::setClock(midnight + 12 * hour));
    require(virtualunit::loadProfile("full"));
}

} // namespace support
