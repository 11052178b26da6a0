#pragma once

#include "reports/items.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace reports {

/** What one line of a report says, or half a line where two values share it. Texts are Latin-1 and
 *  belong to whoever handed the entry out. */
struct Entry {
    enum class Kind {
        Item,    ///< a row of the table
        Unknown, ///< a line that the table doesn't know, whole in text; it has no name
        Log,     ///< a log file by its name; its text follows piece by piece
        Layout, ///< blank lines, banners and headings, whole in text: all else tells what they tell
    };
    Kind kind = Kind::Unknown;
    const Item *item = nullptr;
    std::string_view section{};
    std::string_view group{};
    std::string_view name{};
    std::string_view text{};   ///< behind the label, as it stands
    std::string_view number{}; ///< the value as JSON writes numbers; empty for none
    std::string_view unit{};
    std::optional<std::int32_t> error{}; ///< the code, where the line tells one
    bool failed = false;                 ///< the line says that something could not be read
    bool continued = false;              ///< the line goes on in the next entry
    std::string_view tail{};             ///< what stood between text and line end
};

/** Takes the entries of a report one by one, in the report's order. */
class EntrySink
{
public:
    virtual ~EntrySink() = default;
    /** @param entry its texts end with the call */
    virtual void entry(const Entry &entry) = 0;
    /** More of the log that was entered last; line ends are line feeds. */
    virtual void logText(std::string_view piece) = 0;
};

/** The code of "N/A", which is "data not available" in the device contract. */
inline constexpr std::int32_t notAvailable = 18;

/** The number if the text is one as JSON writes numbers, with nothing around it. */
std::optional<double> numberOf(std::string_view text);

/** A number for people: whole ones with all digits, others with six. */
std::string numberText(double number);

/** The numbers of "v1.2.3.4" or "1.2.3", at most four; none of other texts. */
std::vector<unsigned> versionNumbers(std::string_view text);

/** Minutes as the report writes them: "1500 min (1 days, 1h, 0min)". */
std::string minutesText(std::uint32_t minutes);

/** Takes the value of an item's line apart.
 *  @param rest behind the label, without the line's end
 *  @param failing behind the label of the failure, if the line has that */
Entry readValue(const Item &item, std::optional<std::string_view> rest,
    std::optional<std::string_view> failing);

/** The line, or half line, of an entry as it stood, or would stand, in a report. */
void appendSource(std::string &text, const Entry &entry);

} // namespace reports
