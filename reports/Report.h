#pragma once

#include "reports/Inputs.h"

#include <deque>

namespace reports {

/** What is kept of a log: its size, and its end. */
struct LogFile {
    std::string name;
    std::size_t lines = 0;
    std::size_t bytes = 0;
    std::uint64_t fingerprint = 0; ///< the same for the same text
    std::string end;               ///< the last lines, Latin-1, at most 64 kB

    void add(std::string_view piece);
};

/** A report in memory, without layout and with only the ends of its logs. */
class Report : private EntrySink
{
public:
    /** Throws a Trouble. */
    explicit Report(const Input &input);
    Report(Report &&) = default;
    Report &operator=(Report &&) = default;

    const std::string &name() const { return file; }
    const Facts &facts() const { return told; }
    /** In the report's order; of lines that nobody knows at most 10,000. */
    const std::vector<Entry> &entries() const { return list; }
    const std::vector<LogFile> &logs() const { return logList; }

    /** The first entry of that name, null if there is none. */
    const Entry *find(
        std::string_view section, std::string_view group, std::string_view name) const;

private:
    void entry(const Entry &entry) override;
    void logText(std::string_view piece) override;
    std::string_view keep(std::string_view text);

    std::string file;
    Facts told;
    std::vector<Entry> list;
    std::vector<LogFile> logList;
    std::deque<std::string> texts; ///< what the entries refer to
    std::size_t unknown = 0;
};

} // namespace reports
