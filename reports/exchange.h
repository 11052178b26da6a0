#pragma once

#include "reports/inOrder.h"

/** Reports for other programs: JSON, one line for each report, and CSV, one row for each entry.
 *  Both are UTF-8. */
namespace reports {

/** Appends Latin-1 as a JSON string, quotes included. */
void appendJson(std::string &text, std::string_view latin1);
/** The same of UTF-8; what is none becomes U+FFFD. */
void appendJsonUtf8(std::string &text, std::string_view utf8);
/** Appends Latin-1 as UTF-8. */
void appendUtf8(std::string &text, std::string_view latin1);
/** Appends what is UTF-8; what is none becomes U+FFFD. */
void appendCleanUtf8(std::string &text, std::string_view utf8);
/** The same for a terminal, which control characters might steer: these become U+FFFD too. */
std::string forTerminal(std::string_view utf8);

void writeJson(const Input &input, Output &output);

void writeTable(const Input &input, Output &output);
/** The columns, by name, and the end of the line. */
extern const std::string_view tableHead;

} // namespace reports
