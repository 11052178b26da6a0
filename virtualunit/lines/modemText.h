#pragma once

#include <string>
#include <string_view>
#include <vector>

/** What the lines of a modem are made of. */
namespace virtualunit::lines {

inline constexpr const char *ok = "OK";
inline constexpr const char *error = "ERROR";

/** Errors of the equipment, as the standard numbers them. */
enum EquipmentError {
    NotAllowed = 3,
    SimNotInserted = 10,
    PinRequired = 11,
    PukRequired = 12,
    SimFailure = 13,
    WrongPassword = 16,
};

/** Errors of the message service, as the standard numbers them. */
enum MessageError {
    MessageNotAllowed = 302,
    NoTextModeParameter = 305,
    MessageSimNotInserted = 310,
    MessagePinRequired = 311,
    MessageSimFailure = 313,
    MessagePukRequired = 316,
    NoNetwork = 331,
};

/** "SIM PIN required" */
const char *textOf(EquipmentError number);

/** A line as a modem sends it; nothing for an empty text. */
std::string framed(std::string_view text);

char upper(char character);
/** So many digits and nothing else. */
bool isCode(std::string_view text, std::size_t least, std::size_t most);
/** Up to 20 digits, a plus sign before them or not. */
bool isPhoneNumber(std::string_view text);
/** The arguments between the commas, without blanks and quotation marks around them; at least one.
 */
std::vector<std::string> argumentsOf(std::string_view text);
/** The number at the start of the text, taken off it; 0 if there is none, -1 if it is too large. */
int takeNumber(std::string_view &text);

} // namespace virtualunit::lines
