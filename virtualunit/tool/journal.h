#pragma once

#include <string>

namespace tool {

/** Prints a journal's file to the standard output stream, or empties it; with `follow` goes on with
 *  what comes until the stream is closed. Throws a commandline::Refusal. */
void showJournal(const std::string &file, bool clear, bool follow);

} // namespace tool
