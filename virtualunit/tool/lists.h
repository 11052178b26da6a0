#pragma once

#include <string>
#include <vector>

/** What vornunit lists, on the standard output stream: for people, or as JSON. Each throws a
 *  commandline::Refusal for what the unit refuses. */
namespace tool {

enum class Format { Text, Json };

/** Throws the refusal if there is one. */
void require(const std::string &error);
/** Throws a refusal that names the nearest right one for what isn't there. */
void requireValue(const std::string &name);
void requireOperation(const std::string &operation);

void listValues(const std::string &filter, Format format);
/** One value a line, in the order of the names. */
void printValues(const std::vector<std::string> &names, Format format);
/** Each value, and then each new one, until the stream is closed. */
void watchValues(const std::vector<std::string> &names);
void listOperations(const std::string &filter, Format format);
void listDisturbances(Format format);
void listProfiles(Format format);
void listShortMessages(Format format);

} // namespace tool
