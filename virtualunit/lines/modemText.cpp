#include "virtualunit/lines/modemText.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <iterator>

namespace virtualunit::lines {

namespace {

struct Text {
    EquipmentError number;
    const char *text;
};
constexpr Text errorTexts[] = {
    {NotAllowed, "operation not allowed"},
    {SimNotInserted, "SIM not inserted"},
    {PinRequired, "SIM PIN required"},
    {PukRequired, "SIM PUK required"},
    {SimFailure, "SIM failure"},
    {WrongPassword, "incorrect password"},
};

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

} // namespace

const char *textOf(EquipmentError number)
{
    const auto *found = std::find_if(std::begin(errorTexts), std::end(errorTexts),
        [number](const Text &row) { return row.number == number; });
    return found->text;
}

std::string framed(std::string_view text)
{
    return text.empty() ? std::string() : "\r\n" + std::string(text) + "\r\n";
}

char upper(char character)
{
    return char(std::toupper(static_cast<unsigned char>(character)));
}

bool isCode(std::string_view text, std::size_t least, std::size_t most)
{
    return text.size() >= least && text.size() <= most &&
           std::all_of(text.begin(), text.end(), isDigit);
}

bool isPhoneNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    return isCode(text, 1, 20);
}

std::vector<std::string> argumentsOf(std::string_view text)
{
    std::vector<std::string> arguments;
    while (true) {
        const auto comma = text.find(',');
        auto argument = text.substr(0, comma);
        const auto first = argument.find_first_not_of(" \"");
        const auto last = argument.find_last_not_of(" \"");
        arguments.emplace_back(first == std::string_view::npos
                                   ? std::string_view()
                                   : argument.substr(first, last - first + 1));
        if (comma == std::string_view::npos)
            return arguments;
        text.remove_prefix(comma + 1);
    }
}

int takeNumber(std::string_view &text)
{
    int number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (code == std::errc::invalid_argument)
        return 0;
    text.remove_prefix(std::size_t(end - text.data()));
    return code == std::errc() ? number : -1;
}

} // namespace virtualunit::lines
