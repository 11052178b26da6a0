#include "reports/read.h"
#include "reports/write.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace {

using reports::Entry;

/** Everything that a reader hands out, put together again. */
struct Rebuilt : reports::EntrySink {
    std::string text;
    std::vector<Entry> entries; ///< as valid as the bytes

    void entry(const Entry &entry) override
    {
        reports::appendSource(text, entry);
        REQUIRE(entry.kind != Entry::Kind::Item || (entry.item && !entry.name.empty()));
        REQUIRE(entry.number.empty() || reports::numberOf(entry.number));
        REQUIRE(!entry.error || entry.failed);
        entries.push_back(entry);
    }
    void logText(std::string_view piece) override
    {
        REQUIRE(!entries.empty());
        text += piece;
    }
};

std::string withPlainLineFeeds(std::string_view bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes.substr(i, 2) != "\r\n")
            text += bytes[i];
    }
    return text;
}

bool sameFacts(const reports::Facts &one, const reports::Facts &other)
{
    return one.generated == other.generated && one.complete == other.complete &&
           one.known == other.known;
}

/** All bytes come back, whether they lie in memory or come in small pieces. */
void checkBytes(std::string_view bytes)
{
    reports::Lines inMemory(bytes);
    Rebuilt whole;
    const reports::Facts facts = reports::readReport(inMemory, whole);
    REQUIRE(whole.text == withPlainLineFeeds(bytes));

    std::string_view rest = bytes;
    reports::Lines inPieces([&rest](char *to, std::size_t size) {
        const std::size_t count = rest.copy(to, std::min<std::size_t>(size, 7));
        rest.remove_prefix(count);
        return count;
    });
    Rebuilt pieces;
    REQUIRE(sameFacts(reports::readReport(inPieces, pieces), facts));
    REQUIRE(pieces.text == whole.text && pieces.entries.size() == whole.entries.size());
}

/** Makes a list of entries out of bytes. */
class Invention
{
public:
    explicit Invention(std::string_view bytes)
        : source(bytes)
    {
        for (const auto &item : reports::items())
            add(item);
    }

    std::vector<Entry> entries;

private:
    char byte()
    {
        if (source.empty())
            return '\0';
        const char first = source.front();
        source.remove_prefix(1);
        return first;
    }

    std::string_view keep(std::string text) { return texts.emplace_back(std::move(text)); }

    std::string number()
    {
        const auto value = static_cast<unsigned char>(byte());
        std::string text = std::to_string(int(value) - 100);
        if (value % 3 == 0)
            text.append(".").append(std::to_string(value));
        return text;
    }

    std::string anyText()
    {
        std::string text;
        for (int length = static_cast<unsigned char>(byte()) % 12; length > 0; --length)
            text += byte();
        const auto isEnd = [](char character) { return character == '\n' || character == '\r'; };
        std::replace_if(text.begin(), text.end(), isEnd, '.');
        return text;
    }

    std::string word(const reports::Item &item)
    {
        const auto &chosen = item.words[static_cast<unsigned char>(byte()) % item.words.size()];
        return {chosen.text.data(), chosen.text.size()};
    }

    std::string value(const reports::Item &item)
    {
        using reports::Shape;
        switch (item.shape) {
        case Shape::Measure:
            return number().append(" ").append(item.unit);
        case Shape::Tight:
            return number().append(item.unit);
        case Shape::Minutes:
            return reports::minutesText(static_cast<unsigned char>(byte()) * 977U);
        case Shape::Sentence:
            return word(item);
        case Shape::Text:
            return anyText();
        case Shape::Number:
        case Shape::Count:
        case Shape::Plain:
        case Shape::Failure:
            return item.words.empty() ? number() : word(item);
        }
        return {};
    }

    void add(const reports::Item &item)
    {
        const auto choice = static_cast<unsigned char>(byte());
        // The first storage device always has its lines, and the second one all or none.
        const bool storage = item.section == reports::storageSection;
        const bool temperatures =
            item.name == reports::minimumTemp || item.name == reports::maximumTemp;
        if (choice % 4 == 0 && !storage && !temperatures)
            return;
        const bool canFail = !item.operation.empty() && item.name != "External battery";
        const bool fails = canFail && !storage && !temperatures && choice % 4 == 1;
        if (item.shape == reports::Shape::Failure && !fails)
            return;
        Entry entry;
        entry.kind = Entry::Kind::Item;
        entry.item = &item;
        entry.section = item.section;
        entry.group = item.group;
        entry.name = item.name;
        entry.failed = fails;
        if (fails)
            entry.error = choice;
        entry.text =
            keep(fails ? std::string("Error(").append(std::to_string(choice)).append(") Fault")
                       : value(item));
        entries.push_back(entry);
    }

    std::string_view source;
    std::deque<std::string> texts;
};

/** A report of any values says these values. */
void checkEntries(std::string_view bytes)
{
    const Invention invention(bytes);
    const std::string text = reports::reportText("Fri Nov 4 05:06:07 2026", invention.entries);
    reports::Lines lines(text);
    Rebuilt read;
    const reports::Facts facts = reports::readReport(lines, read);
    REQUIRE(facts.complete && facts.generated == "2026-11-04T05:06:07");
    REQUIRE(reports::reportText("Fri Nov 4 05:06:07 2026", read.entries) == text);
    std::vector<Entry> found;
    for (const Entry &entry : read.entries) {
        if (entry.kind != Entry::Kind::Layout)
            found.push_back(entry);
    }
    REQUIRE(found.size() == invention.entries.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        const Entry &told = invention.entries[i];
        REQUIRE(found[i].item == told.item && found[i].text == told.text);
        REQUIRE(found[i].failed == told.failed && found[i].error == told.error);
    }
}

} // namespace

void checkReport(const std::uint8_t *bytes, std::size_t size)
{
    const std::vector<char> copy(bytes, bytes + size);
    const std::string_view text(copy.data(), copy.size());
    checkBytes(text);
    checkEntries(text);
}
