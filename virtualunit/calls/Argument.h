#pragma once

#include "frame/VornAux2.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>

namespace virtualunit {

/** @name As the journal writes a value of that type
 *  @{ */
std::string journalText(bool value);
std::string journalText(double value);
std::string journalText(const char *latin1);
std::string journalText(const DiagnosticTimes &times);
std::string journalText(const BatteryTimes &times);
std::string journalText(const FirmwareUpgradeStatus &status);
template <std::integral T>
std::string journalText(T value)
{
    return std::to_string(value);
}
/** @} */

/** One argument of a call, for the checks and for the journal. It refers to what the caller gave
 *  and is gone with the call. */
class Argument
{
public:
    /** By value. */
    template <typename T>
    requires std::is_arithmetic_v<T> Argument(const T &value)
        : object(&value)
        , printer(print<T>)
        , way(Way::Given)
    {}
    /** A text. */
    Argument(const char *text)
        : object(text)
        , printer(printText)
        , way(Way::Given)
        , isPointer(true)
    {}
    /** Filled on success. */
    template <typename T>
    requires(!std::is_const_v<T> && !std::is_same_v<T, char>) Argument(T *out)
        : object(out)
        , printer(print<T>)
        , way(Way::Filled)
        , isPointer(true)
    {}
    /** A buffer that is filled with a text on success; the caller gives its size. */
    Argument(const char *buffer, std::uint32_t size)
        : object(buffer)
        , printer(printText)
        , way(Way::Buffer)
        , isPointer(true)
        , bufferSize(size)
    {}
    /** A DeviceBool, which is filled on success; other bytes have the same type. */
    static Argument flag(DeviceBool *out);

    bool isGiven() const { return way != Way::Filled; }
    bool isFilled() const { return way != Way::Given; }
    bool isMissing() const;
    /** What the caller gave: a value, or the size of a buffer. */
    std::string given() const;
    /** What stands there after success. */
    std::string filled() const { return printer(object); }

private:
    enum class Way { Given, Filled, Buffer };
    using Printer = std::string (*)(const void *object);

    template <typename T>
    static std::string print(const void *object)
    {
        return journalText(*static_cast<const T *>(object));
    }
    static std::string printText(const void *object);
    static std::string printFlag(const void *object);

    const void *object;
    Printer printer;
    Way way;
    bool isPointer = false;
    std::uint32_t bufferSize = 0;
};

using Arguments = std::initializer_list<Argument>;

} // namespace virtualunit
