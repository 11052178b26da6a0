#pragma once

#include "frame/DeviceHandle.h"
#include "frame/workSteps.h"

#include <QString>

#include <span>
#include <type_traits>

/*
 * Sections as tables: a row is the name of an item and a function that reads the item and makes its
 * line. The templates below make that function from an operation of the device and a formatter.
 * The value is read in one statement and formatted in the next, since the order in which the
 * arguments of a call are evaluated is not fixed.
 */

template <typename Handle>
struct ReportRow {
    QString (*line)(Handle handle, const char *name);
    const char *name;
};

/** The lines of a table, in its order. */
template <typename Handle>
QString reportLines(std::type_identity_t<Handle> handle, std::span<const ReportRow<Handle>> rows)
{
    QString text;
    for (const auto &row : rows) {
        workStep();
        text += row.line(handle, row.name);
    }
    return text;
}

namespace rows {

template <typename Operation>
struct ReadingOf;
template <typename HandleType, typename ValueType>
struct ReadingOf<DeviceCode (*)(HandleType, ValueType *)> {
    using Handle = HandleType;
    using Value = ValueType;
};

template <typename Formatter>
struct SettingOf;
template <typename ValueType>
struct SettingOf<QString (*)(const char *, ValueType, DeviceCode)> {
    using Value = ValueType;
};

} // namespace rows

/** An item of the unit's equipment, for formatters that take code, name and value. */
template <auto Read, auto Format>
QString equipmentLine(typename rows::ReadingOf<decltype(Read)>::Handle handle, const char *name)
{
    typename rows::ReadingOf<decltype(Read)>::Value value{};
    const auto code = Read(handle, &value);
    return Format(code, name, value);
}

/** A setting, for formatters that take name, value and code. Values are widened to what the
 *  formatter takes, with their sign if they have one. */
template <auto Read, auto Format>
QString settingLine(typename rows::ReadingOf<decltype(Read)>::Handle handle, const char *name)
{
    typename rows::ReadingOf<decltype(Read)>::Value value{};
    const auto code = Read(handle, &value);
    return Format(
        name, static_cast<typename rows::SettingOf<decltype(Format)>::Value>(value), code);
}
