#include "devicetools/trace/LineParser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace trace {

namespace {

using contract::Argument;
using contract::Number;
using contract::Role;

/** A function of the contract by its name. */
struct Callee {
    Call::Kind kind;
    const char *name;
    const contract::Operation *operation = nullptr;
    const contract::Text *text = nullptr;
};

const std::unordered_map<std::string_view, Callee> &callees()
{
    static const auto all = [] {
        std::unordered_map<std::string_view, Callee> found;
        const auto add = [&](Callee callee) { found.emplace(callee.name, callee); };
        for (const auto &operation : contract::operations)
            add({Call::Kind::Operation, operation.name, &operation});
        for (const auto &family : contract::families) {
            add({Call::Kind::Create, family.createName});
            add({Call::Kind::Release, family.releaseName});
        }
        for (const auto &text : contract::texts)
            add({Call::Kind::Text, text.name, nullptr, &text});
        return found;
    }();
    return all;
}

std::string inQuotes(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

class LineParser
{
public:
    explicit LineParser(std::string_view line)
        : text(line)
    {}

    Call call()
    {
        Call call;
        if (!startsWith("T")) {
            call.begin = seconds();
            expect(" ");
        }
        expect("T");
        call.thread = natural("the number of a thread");
        expect(" ");
        const auto &callee = function();
        call.kind = callee.kind;
        call.name = callee.name;
        call.operation = callee.operation;
        expect("(");
        if (callee.kind == Call::Kind::Operation || callee.kind == Call::Kind::Release)
            call.handle = handle();
        if (callee.operation)
            readIns(*callee.operation, call.arguments);
        else if (callee.text)
            readNumber(call.arguments, textNumber(*callee.text), textWidth(*callee.text));
        expect(")");
        readResult(call);
        if (call.operation && startsWith(" f")) {
            expect(" fault");
            call.isFault = true;
        }
        if (call.begin) {
            expect(" <");
            call.duration = seconds();
            expect(">");
        }
        if (!isAtEnd())
            throw LineError{"there is " + inQuotes(rest()) + " behind the call", rest() == " "};
        return call;
    }

private:
    std::string_view text;
    std::size_t position = 0;

    std::string_view rest() const { return text.substr(position); }
    bool isAtEnd() const { return position == text.size(); }
    bool startsWith(std::string_view mark) const { return rest().starts_with(mark); }

    [[noreturn]] void fail(const std::string &reason) const { throw LineError{reason, isAtEnd()}; }

    bool take(std::string_view mark)
    {
        const bool isThere = startsWith(mark);
        if (isThere)
            position += mark.size();
        return isThere;
    }

    void expect(std::string_view mark)
    {
        if (take(mark))
            return;
        const bool isCut = mark.starts_with(rest());
        const auto found = rest();
        if (isCut)
            position = text.size();
        fail(inQuotes(mark) + " is expected before " + inQuotes(found));
    }

    /** Up to what may stand behind a number, a word or a name. */
    std::string_view token()
    {
        const auto end = std::min(text.find_first_of(",()[] <>", position), text.size());
        const auto found = text.substr(position, end - position);
        position = end;
        return found;
    }

    template <typename T>
    T number(const std::string &what)
    {
        const auto figures = token();
        T value{};
        const auto [end, error] =
            std::from_chars(figures.data(), figures.data() + figures.size(), value);
        if (error == std::errc::result_out_of_range)
            throw LineError{inQuotes(figures) + " is beyond " + what, false};
        if (error != std::errc() || end != figures.data() + figures.size())
            fail(inQuotes(figures) + " is not " + what);
        return value;
    }

    unsigned natural(const std::string &what) { return number<unsigned>(what); }

    double seconds()
    {
        const auto value = number<double>("a time in seconds");
        if (!(value >= 0 && value < 1e9))
            fail("a time is not in its range");
        return value;
    }

    const Callee &function()
    {
        const auto name = token();
        const auto found = callees().find(name);
        if (found != callees().end())
            return found->second;
        const bool mayBeCut =
            isAtEnd() && std::any_of(callees().begin(), callees().end(),
                             [&](const auto &one) { return one.first.starts_with(name); });
        throw LineError{inQuotes(name) + " is no operation of the contract", mayBeCut};
    }

    unsigned handle()
    {
        expect("#");
        return natural("the number of a handle");
    }

    /** An integer of that width and kind. */
    std::int64_t integer(Number kind, std::size_t width)
    {
        const auto what =
            (kind == Number::Signed ? "a number of " : "a number without a sign of ") +
            std::to_string(8 * width) + " bits";
        const auto figures = text.substr(position);
        const auto value = number<std::int64_t>(what);
        const int bits = int(8 * width) - (kind == Number::Signed ? 1 : 0);
        const std::int64_t high =
            bits > 62 ? std::numeric_limits<std::int64_t>::max() : (std::int64_t{1} << bits) - 1;
        const std::int64_t low = kind == Number::Signed ? -high - 1 : 0;
        if (value < low || value > high) {
            const auto length = position - (text.size() - figures.size());
            throw LineError{inQuotes(figures.substr(0, length)) + " is beyond " + what, false};
        }
        return value;
    }

    void readNumber(std::vector<Datum> &data, Number kind, std::size_t width)
    {
        if (kind == Number::Real)
            data.emplace_back(number<double>("a number"));
        else if (kind != Number::Bool && kind != Number::Flag)
            data.emplace_back(integer(kind, width)); // NOLINT(bugprone-branch-clone): words first
        else if (take("true"))
            data.emplace_back(std::int64_t{1});
        else if (take("false"))
            data.emplace_back(std::int64_t{0});
        else if (kind == Number::Flag)
            data.emplace_back(integer(kind, width));
        else {
            const auto word = token();
            const bool mayBeCut = isAtEnd() && (std::string_view("true").starts_with(word) ||
                                                   std::string_view("false").starts_with(word));
            throw LineError{inQuotes(word) + " is neither true nor false", mayBeCut};
        }
    }

    char escaped()
    {
        if (isAtEnd())
            fail("a text has no end");
        const char mark = text[position++];
        if (mark == '"' || mark == '\\')
            return mark;
        if (mark == 'n')
            return '\n';
        if (mark != 'x')
            throw LineError{"a text has an unknown escape", false};
        const auto digits = rest().substr(0, 2);
        position += digits.size();
        unsigned byte = 0;
        const auto end = digits.data() + digits.size();
        const bool areDigits =
            std::from_chars(digits.data(), end, byte, 16).ptr == end && digits.size() == 2;
        if (digits.size() < 2)
            fail("a text has no end");
        if (!areDigits || byte == 0)
            throw LineError{"a text has an unknown escape", false};
        return char(byte);
    }

    /** A byte above 0x7F, which is two in UTF-8; the first one is taken. */
    char latin1(unsigned char lead)
    {
        if (isAtEnd())
            fail("a text has no end");
        const auto next = static_cast<unsigned char>(text[position++]);
        if ((lead != 0xC2 && lead != 0xC3) || (next & 0xC0U) != 0x80)
            throw LineError{"a text has a character that no device's text has", false};
        return char((lead & 0x03U) << 6U | (next & 0x3FU));
    }

    std::string quotedText()
    {
        std::string bytes;
        expect("\"");
        while (!take("\"")) {
            if (isAtEnd())
                fail("a text has no end");
            const char next = text[position++];
            const auto byte = static_cast<unsigned char>(next);
            if (next == '\\')
                bytes += escaped();
            else if (byte >= 0x80)
                bytes += latin1(byte);
            else if (byte < 0x20 || byte == 0x7F)
                throw LineError{"a text has a control character that isn't escaped", false};
            else
                bytes += next;
        }
        return bytes;
    }

    void readText(std::vector<Datum> &data)
    {
        if (isNull())
            data.emplace_back();
        else
            data.emplace_back(quotedText());
    }

    /** Takes the word that stands for a null pointer, if it is there. */
    bool isNull()
    {
        if (startsWith("n"))
            expect("null");
        else
            return false;
        return true;
    }

    static Number textNumber(const contract::Text &function)
    {
        return std::string_view(function.type).starts_with('u') ? Number::Unsigned : Number::Signed;
    }

    static std::size_t textWidth(const contract::Text &function)
    {
        return std::string_view(function.type).find("16") != std::string_view::npos ? 2 : 4;
    }

    void readIns(const contract::Operation &operation, std::vector<Datum> &data)
    {
        for (const auto &argument : operation.arguments) {
            if (argument.role == Role::Handle || argument.isWritten())
                continue;
            expect(", ");
            if (argument.role == Role::String)
                readText(data);
            else
                readNumber(data, argument.number, argument.width);
        }
    }

    void readOut(const Argument &argument, std::vector<Datum> &data)
    {
        if (argument.role == Role::Buffer)
            return readText(data);
        if (argument.role == Role::Out)
            return readOutNumber(data, argument.number, argument.width);
        bool first = true;
        for (const auto &field : contract::find(contract::structs, argument.type)->fields) {
            if (!first)
                expect(", ");
            first = false;
            readOutNumber(data, field.number, field.width);
        }
    }

    void readOutNumber(std::vector<Datum> &data, Number kind, std::size_t width)
    {
        // A number that is none begins like the word.
        if (kind == Number::Real ? take("null") : isNull())
            data.emplace_back();
        else
            readNumber(data, kind, width);
    }

    void readOuts(const contract::Operation &operation, std::vector<Datum> &data)
    {
        bool first = true;
        for (const auto &argument : operation.arguments) {
            if (!argument.isWritten())
                continue;
            expect(first ? " [" : ", ");
            first = false;
            readOut(argument, data);
        }
        if (!first)
            expect("]");
    }

    void readResult(Call &call)
    {
        if (call.kind == Call::Kind::Release)
            return;
        expect(" = ");
        if (call.kind == Call::Kind::Create) {
            call.handle = handle();
        } else if (call.kind == Call::Kind::Text) {
            if (!isNull())
                call.text = quotedText();
        } else {
            call.code = std::int32_t(integer(Number::Signed, sizeof call.code));
            if (call.code == DEVICE_OK)
                readOuts(*call.operation, call.outs);
        }
    }
};

} // namespace

Call parseLine(std::string_view line)
{
    return LineParser(line).call();
}

} // namespace trace
