#pragma once

#include "devicetools/contract.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/**
 * The one reader of traces and of the virtual unit's journals; format.h writes them, and the
 * grammar is in docs/trace.md. Each function may be called from any thread.
 */
namespace trace {

/** A value of a call: nothing where the caller passed a null pointer; numbers and truth values; a
 *  text as the device's bytes. */
using Datum = std::variant<std::monostate, std::int64_t, double, std::string>;

/** One call on a device library as it stands in a line. */
struct Call {
    enum class Kind {
        Operation, ///< returns a code
        Create,
        Release,
        Text ///< a number's constant text, without a handle
    };

    std::optional<double> begin;    ///< seconds since the program's start, with --times
    std::optional<double> duration; ///< seconds, with --times
    unsigned thread = 0;            ///< 1 for the first thread that called, and so on
    Kind kind = Kind::Operation;
    const char *name = nullptr;                     ///< the contract's own
    const contract::Operation *operation = nullptr; ///< null for all other kinds
    unsigned handle = 0;          ///< 1 for the family's first, 0 for none that the library gave
    std::vector<Datum> arguments; ///< what the caller gave, less the handle
    std::int32_t code = 0;        ///< of an operation
    std::vector<Datum> outs;      ///< what a successful operation wrote; a record's fields in a row
    std::optional<std::string> text; ///< of a text operation; none if it gave a null pointer
    bool isFault = false;            ///< vorntrace answered in the library's place

    /** The line, less its end. */
    std::string line() const;
    /** What is asked, whichever handle of the family asks it: "Can_getBaudrate(1)". Calls without
     *  a valid handle are apart: "Can_getBaudrate(#0, 1)". */
    std::string question() const;
};

/** The question as question() has it, of a call that is just made. */
std::string question(const char *name, bool isHandleValid, std::string_view arguments);

struct Trace {
    std::vector<Call> calls; ///< in order of their returns
    std::string warning;     ///< a sentence when the end was cut off, else empty
};

/** What is no trace; the text names the line and says what is wrong with it. */
class Unreadable : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** The whole of a trace. A last line without its end counts as cut off and is left out, with a
 *  warning. Throws Unreadable. */
Trace read(std::string_view bytes);

/** Whether a file that begins so is a trace or a journal rather than anything else. */
bool looksLikeTrace(std::string_view beginning);

} // namespace trace
