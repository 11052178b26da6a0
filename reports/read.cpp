#include "reports/read.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace reports {

namespace {

/** The title between the dashes. */
std::optional<std::string_view> bannerTitle(std::string_view line)
{
    constexpr std::size_t edge = bannerEdge.size() + 2;
    if (line.size() <= 2 * edge || !line.starts_with(bannerEdge) || !line.ends_with(bannerEdge))
        return {};
    if (line.substr(bannerEdge.size(), 2) != "  " || line.substr(line.size() - edge, 2) != "  ")
        return {};
    return line.substr(edge, line.size() - 2 * edge);
}

/** The line that many lines further on, without its end. */
std::string_view peek(std::string_view bytes, int count)
{
    Line line;
    for (int i = 0; i < count; ++i) {
        if (!takeLine(bytes, line))
            return {};
    }
    return line.text;
}

bool isBlank(std::string_view bytes)
{
    return bytes.find_first_not_of("\r\n") == std::string_view::npos;
}

/** "File:VornAuxService.log:" gives the name. */
std::string_view logName(std::string_view line)
{
    if (line.size() <= logPrefix.size() + 1 || !line.starts_with(logPrefix) || !line.ends_with(':'))
        return {};
    return line.substr(logPrefix.size(), line.size() - logPrefix.size() - 1);
}

std::span<const Item> rowsOf(std::string_view section)
{
    const auto rows = items();
    const auto first = std::find_if(
        rows.begin(), rows.end(), [&](const Item &item) { return item.section == section; });
    const auto last =
        std::find_if(first, rows.end(), [&](const Item &item) { return item.section != section; });
    return rows.subspan(std::size_t(first - rows.begin()), std::size_t(last - first));
}

class Reader
{
public:
    Reader(Lines &bytes, EntrySink &receiver)
        : lines(bytes)
        , sink(receiver)
    {}

    Facts read()
    {
        Line line;
        bool whole = true;
        while (lines.next(line)) {
            if (line.ended && whole)
                take(line.text);
            else
                takePiece(line);
            whole = line.ended;
        }
        facts.complete = dated && inOrder && place == sections().size();
        return std::move(facts);
    }

private:
    /** Whether each of the two storage devices has told this already. */
    struct Told {
        bool serial = false;
        bool lifetime = false;
        bool time = false;
    };

    void take(std::string_view line)
    {
        if (inLog) {
            if (!line.empty() || !endsLog()) {
                sink.logText(line);
                sink.logText("\n");
                return;
            }
            inLog = false;
        }
        if (line.empty())
            return layout(line, false);
        if (takeFrame(line) || takeHeading(line) || takeItem(line))
            ++facts.known;
        else
            unknown(line, false);
    }

    /** Of a line that is too long, or that the bytes end in. */
    void takePiece(const Line &piece)
    {
        if (inLog) {
            sink.logText(piece.text);
            if (piece.ended)
                sink.logText("\n");
        } else if (bannerTitle(piece.text) == endSection && lines.ahead().empty()) {
            enterSection(endSection);
            layout(piece.text, !piece.ended);
            ++facts.known;
        } else {
            unknown(piece.text, !piece.ended);
        }
    }

    /** A blank line in a log may be the first of what comes behind the log. */
    bool endsLog() const
    {
        const std::string_view rest = lines.ahead();
        const auto title = bannerTitle(peek(rest, 1));
        if (title == endSection) {
            // A log may hold the end of another report.
            const std::size_t end = rest.find('\n');
            return lines.endsAhead() &&
                   (end == std::string_view::npos || isBlank(rest.substr(end)));
        }
        if (title)
            return isSection(*title) && !wasSeen(*title);
        const std::string_view name = peek(rest, 1).empty() ? logName(peek(rest, 2)) : "";
        return std::find(std::begin(logNames), std::end(logNames), name) != std::end(logNames) &&
               name != log;
    }

    static bool isSection(std::string_view title)
    {
        return std::find(sections().begin(), sections().end(), title) != sections().end();
    }

    bool wasSeen(std::string_view title) const
    {
        const auto at = std::find(sections().begin(), sections().end(), title);
        return seen[std::size_t(at - sections().begin())];
    }

    bool takeFrame(std::string_view line)
    {
        if (line.starts_with(datePrefix) && facts.generated.empty()) {
            facts.generated = isoTime(line.substr(datePrefix.size()));
            if (facts.generated.empty())
                return false;
            dated = true;
            layout(line, false);
            return true;
        }
        if (const auto title = bannerTitle(line)) {
            enterSection(*title);
            layout(line, false);
            return true;
        }
        return section == logSection && takeLogName(line);
    }

    void enterSection(std::string_view title)
    {
        // Diagnostic data that was saved alone has this banner, and what is saved behind it none.
        banners = banners || dated || title != storageSection;
        const auto at = std::find(sections().begin(), sections().end(), title);
        const auto index = std::size_t(at - sections().begin());
        if (index < sections().size()) {
            inOrder = inOrder && index == place;
            place = index + 1;
            seen[index] = true;
            section = *at;
        } else {
            inOrder = false; // a section of another version
            ownTitle = lines.isInMemory() ? std::string() : std::string(title);
            section = lines.isInMemory() ? title : ownTitle;
        }
        group = {};
        rows = rowsOf(section);
        expected = 0;
        told = {};
    }

    bool takeLogName(std::string_view line)
    {
        const std::string_view name = logName(line);
        if (name.empty())
            return false;
        log = name;
        inLog = true;
        Entry entry;
        entry.kind = Entry::Kind::Log;
        entry.section = section;
        entry.name = name;
        sink.entry(entry);
        return true;
    }

    bool takeHeading(std::string_view line)
    {
        for (const Heading &heading : headings()) { // NOLINT(readability-use-anyofallof): it acts
            // Sections that were saved one by one have no banners, only their headings.
            if (heading.line != line || (banners && heading.section != section))
                continue;
            if (section != heading.section)
                rows = rowsOf(heading.section);
            section = heading.section;
            group = heading.group;
            layout(line, false);
            return true;
        }
        return false;
    }

    bool takeItem(std::string_view line)
    {
        if (section == storageSection)
            return takeStorage(line) || (!banners && takeLoneItem(line));
        // Lines mostly come in the order of the table.
        for (std::size_t step = 0; step < rows.size(); ++step) {
            const std::size_t index = (expected + step) % rows.size();
            if (takeAs(rows[index], line)) {
                expected = index + 1;
                return true;
            }
        }
        return !banners && takeLoneItem(line);
    }

    /** In sections that were saved one by one, a label that one section alone has tells which. */
    bool takeLoneItem(std::string_view line)
    {
        const Item *only = nullptr;
        for (const Item &item : items()) {
            std::string_view rest;
            const auto isLine = [line](const Word &word) { return word.text == line; };
            const bool mine = item.section != storageSection && !item.name.empty() &&
                              (item.labels(line, rest) || item.labelsFailure(line, rest) ||
                                  (item.shape == Shape::Sentence &&
                                      std::any_of(item.words.begin(), item.words.end(), isLine)));
            if (!mine)
                continue;
            if (only && only->section != item.section)
                return false;
            only = only ? only : &item;
        }
        if (!only || !takeAs(*only, line))
            return false;
        section = only->section;
        group = only->group;
        rows = rowsOf(section);
        expected = std::size_t(only - rows.data()) + 1;
        return true;
    }

    bool takeAs(const Item &item, std::string_view line)
    {
        std::string_view rest;
        if (item.shape == Shape::Sentence) {
            const auto isLine = [line](const Word &word) { return word.text == line; };
            if (std::any_of(item.words.begin(), item.words.end(), isLine))
                return enter(readValue(item, line, {}));
            return item.labelsFailure(line, rest) && !item.failureLabel.empty() &&
                   enter(readValue(item, {}, rest));
        }
        if (item.name == minimumTemp)
            return takeTemperatures(item, line);
        if (item.name == maximumTemp)
            return false; // it stands behind the other
        std::optional<std::string_view> value;
        std::optional<std::string_view> failing;
        if (item.labels(line, rest))
            value = rest;
        if (item.labelsFailure(line, rest))
            failing = rest;
        return (value || failing) && enter(readValue(item, value, failing));
    }

    bool enter(const Entry &entry)
    {
        if (entry.kind != Entry::Kind::Item)
            return false;
        sink.entry(entry);
        return true;
    }

    /** "Battery minimum temp: -5 deg C, maximum temp: 51 deg C" */
    bool takeTemperatures(const Item &item, std::string_view line)
    {
        std::string_view rest;
        const std::size_t at = line.find(betweenTemps);
        const Item *const other = findItem(item.section, item.group, maximumTemp);
        if (!item.labels(line, rest) || at == std::string_view::npos || !other)
            return false;
        Entry lowest = readValue(item, rest.substr(0, rest.find(betweenTemps)), {});
        const Entry highest = readValue(*other, line.substr(at + betweenTemps.size()), {});
        lowest.continued = true;
        return enter(lowest) && enter(highest);
    }

    /** The two storage devices have the same labels, so what was told already decides. */
    bool takeStorage(std::string_view line)
    {
        Told &first = told[0];
        Told &second = told[1];
        if (line == storageRule) {
            if (peek(lines.ahead(), 1).starts_with("Device serial number: "))
                first = {true, true, true};
            layout(line, false);
            return true;
        }
        const auto enterOf = [&](bool Told::*what, std::string_view name) {
            bool isSecond = first.*what || second.serial || second.lifetime || second.time;
            if (what == &Told::time && !isSecond)
                isSecond = endsSecondStorage();
            const Item *const item =
                findItem(storageSection, isSecond ? secondStorage : firstStorage, name);
            if (!item || !takeAs(*item, line))
                return false;
            told[isSecond ? 1 : 0].*what = true;
            return true;
        };
        if (line == noLifetime)
            return takeNoLifetime(line);
        if (line.starts_with("getInitialTime2: "))
            first.time = true;
        return enterOf(&Told::serial, "Device serial number") ||
               enterOf(&Told::lifetime, "Estimated remaining lifetime") ||
               enterOf(&Told::time, initialTime);
    }

    /** A rule closes the second device's time stamp, and opens the second device. */
    bool endsSecondStorage() const
    {
        const std::string_view rest = lines.ahead();
        return peek(rest, 1) == storageRule && !peek(rest, 2).starts_with("Device serial number: ");
    }

    /** One sentence for the serial number and for the lifetime. */
    bool takeNoLifetime(std::string_view line)
    {
        const bool isSecond = (told[0].serial && told[0].lifetime) || told[1].serial;
        Told &device = told[isSecond ? 1 : 0];
        const bool isSerial = !device.serial && !device.lifetime;
        (isSerial ? device.serial : device.lifetime) = true;
        const Item *const item = findItem(storageSection, isSecond ? secondStorage : firstStorage,
            isSerial ? "Device serial number" : "Estimated remaining lifetime");
        if (!item)
            return false;
        Entry entry = readValue(*item, line, {});
        entry.failed = true;
        return enter(entry);
    }

    void layout(std::string_view line, bool continued)
    {
        Entry entry;
        entry.kind = Entry::Kind::Layout;
        entry.section = section;
        entry.group = group;
        entry.text = line;
        entry.continued = continued;
        sink.entry(entry);
    }

    void unknown(std::string_view line, bool continued)
    {
        Entry entry;
        entry.section = section;
        entry.group = group;
        entry.text = line;
        entry.continued = continued;
        sink.entry(entry);
    }

    Lines &lines;
    EntrySink &sink;
    Facts facts;
    std::string ownTitle; ///< of a section that the table doesn't know
    std::string_view section;
    std::string_view group;
    std::span<const Item> rows; ///< of the section
    std::string log;
    std::size_t expected = 0; ///< row that the next line is looked for from
    std::size_t place = 0;    ///< of the next section, by the report's order
    std::array<bool, 16> seen{};
    std::array<Told, 2> told;
    bool banners = false;
    bool inLog = false;
    bool dated = false;
    bool inOrder = true;
};

} // namespace

Facts readReport(Lines &lines, EntrySink &sink)
{
    return Reader(lines, sink).read();
}

std::string isoTime(std::string_view text)
{
    constexpr std::string_view months = "JanFebMarAprMayJunJulAugSepOctNovDec";
    char dayName[4] = "";
    char monthName[4] = "";
    unsigned day = 0;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    int year = 0;
    int length = 0;
    const std::string line(text.substr(0, 40));
    if (std::sscanf(line.c_str(), "%3s %3s %2u %2u:%2u:%2u %5d%n", dayName, monthName, &day, &hour,
            &minute, &second, &year, &length) != 7 ||
        std::size_t(length) != text.size())
        return {};
    const std::string_view name = monthName;
    const std::size_t month = months.find(name);
    if (name.size() != 3 || month == std::string_view::npos || month % 3 != 0 || day < 1 ||
        day > 31 || hour > 23 || minute > 59 || second > 60 || year < 0)
        return {};
    std::array<char, 64> iso{};
    std::snprintf(iso.data(), iso.size(), "%04d-%02u-%02uT%02u:%02u:%02u", year,
        unsigned(month / 3 + 1), day, hour, minute, second);
    return iso.data();
}

} // namespace reports
