#pragma once

#include "reports/read.h"

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <istream>
#include <memory>
#include <string>
#include <vector>

namespace reports {

/** One report to be read, or the words why it can't be. */
struct Input {
    std::string name;    ///< as it was given, UTF-8; "-" for the standard input
    std::string trouble; ///< empty, or what is wrong with it
};

/**
 * The reports that a command line names, one after the other: files, "-", all .txt files in and
 * below folders by name, and what a list names line by line. Of a folder the names are held at
 * once, of a list one line. Links to folders below a folder are not followed. The standard input
 * can be read once, as a report or as the list. One thread at a time.
 */
class Inputs
{
public:
    /** @param list file with one name a line, "-" for the standard input, empty for none */
    Inputs(std::vector<std::string> names, const std::string &list);

    bool next(Input &input);

private:
    bool nextName(std::string &name);
    void list(const std::string &folder);

    std::deque<std::string> given;
    std::deque<Input> inFolder;
    std::ifstream listFile;
    std::istream *listed = nullptr;
    std::string listTrouble;
    bool standardInput = false; ///< is read already
};

/** The bytes of a report, which can be read more than once. What is large stays where it is; the
 *  standard input then goes through a temporary file. */
class Content
{
public:
    /** Throws a Trouble. */
    explicit Content(const Input &input);
    ~Content();
    Content(const Content &) = delete;
    Content &operator=(const Content &) = delete;

    Facts read(EntrySink &sink);
    bool isEmpty() const { return start.empty(); }

private:
    void load(std::streambuf &from);
    void spool(std::streambuf &from);

    std::string start; ///< all of it, if it is no larger than that
    std::filebuf file;
    std::FILE *spooled = nullptr;
    bool large = false;
};

/** Why something can't be done, for people; it names the file. */
struct Trouble {
    std::string text;
};

/** A sink for what nobody wants. */
class NoEntries : public EntrySink
{
public:
    void entry(const Entry &) override {}
    void logText(std::string_view) override {}
};

/** A content that has anything of a report in it, read once without a sink; throws a Trouble. */
Facts readFacts(Content &content, const std::string &name);

} // namespace reports
