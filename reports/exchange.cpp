#include "reports/exchange.h"

#include <algorithm>
#include <array>

namespace reports {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; ///< U+FFFD
constexpr char hexDigits[] = "0123456789abcdef";

/** Whether a byte of Latin-1 is more than itself in a JSON string. */
constexpr auto special = [] {
    std::array<bool, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte] = byte < 0x20 || byte >= 0x7F || byte == '"' || byte == '\\';
    return table;
}();

void appendCharacter(std::string &text, unsigned char byte)
{
    if (byte < 0x80) {
        text += char(byte);
        return;
    }
    text += char(0xC0 | (byte >> 6));
    text += char(0x80 | (byte & 0x3F));
}

void appendEscaped(std::string &text, unsigned char byte)
{
    if (byte == '\n') {
        text += "\\n";
    } else if (byte == '"' || byte == '\\') {
        text += '\\';
        text += char(byte);
    } else if (byte < 0x20 || byte == 0x7F) {
        text += "\\u00";
        text += hexDigits[byte >> 4];
        text += hexDigits[byte & 0xF];
    } else {
        appendCharacter(text, byte);
    }
}

void appendInside(std::string &text, std::string_view latin1)
{
    std::size_t plain = 0;
    for (std::size_t i = 0; i < latin1.size(); ++i) {
        const auto byte = static_cast<unsigned char>(latin1[i]);
        if (!special[byte])
            continue;
        text.append(latin1, plain, i - plain);
        appendEscaped(text, byte);
        plain = i + 1;
    }
    text.append(latin1, plain);
}

/** Bytes of the UTF-8 character that the text starts with, 0 if it starts with none. */
std::size_t characterSize(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t size = lead < 0xC2   ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (size == 0 || size > text.size())
        return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    }
    // Overlong forms, surrogates and what lies beyond the last character.
    const unsigned char second = byte(1);
    const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return wrong ? 0 : size;
}

/** What all entries of a row of the table have in common, made once. */
class Prefixes
{
public:
    using Make = void (*)(std::string &, const Entry &);
    explicit Prefixes(Make make)
    {
        for (const Item &item : items()) {
            Entry entry;
            entry.item = &item;
            entry.section = item.section;
            entry.group = item.group;
            entry.name = item.name;
            make(texts.emplace_back(), entry);
        }
    }
    const std::string &of(const Item &item) const
    {
        return texts[std::size_t(&item - items().data())];
    }

private:
    std::vector<std::string> texts;
};

void appendJsonStart(std::string &text, const Entry &entry)
{
    text += "{\"section\":";
    appendJson(text, entry.section);
    text += ",\"group\":";
    appendJson(text, entry.group);
    text += ",\"name\":";
    if (entry.name.empty())
        text += "null";
    else
        appendJson(text, entry.name);
    text += ",\"text\":\"";
}

void appendJsonEnd(std::string &text, const Entry &entry)
{
    text += "\",\"value\":";
    text += entry.number.empty() ? "null" : entry.number;
    text += ",\"unit\":";
    if (entry.number.empty() || entry.unit.empty())
        text += "null";
    else
        appendJson(text, entry.unit);
    text += ",\"error\":";
    text += entry.error ? std::to_string(*entry.error) : "null";
    text += '}';
}

class JsonSink : public EntrySink
{
public:
    explicit JsonSink(Output &receiver)
        : output(receiver)
    {}

    void entry(const Entry &entry) override
    {
        static const Prefixes prefixes(appendJsonStart);
        if (entry.kind == Entry::Kind::Layout)
            return;
        endLog();
        std::string &text = output.text();
        text += first ? "" : ",";
        first = false;
        if (entry.item)
            text += prefixes.of(*entry.item);
        else
            appendJsonStart(text, entry);
        if (entry.kind == Entry::Kind::Log) {
            inLog = true;
            return;
        }
        appendInside(text, entry.text);
        appendJsonEnd(text, entry);
        output.write({});
    }

    void logText(std::string_view piece) override
    {
        appendInside(output.text(), piece);
        output.write({});
    }

    void endLog()
    {
        if (inLog)
            appendJsonEnd(output.text(), {});
        inLog = false;
    }

private:
    Output &output;
    bool first = true;
    bool inLog = false;
};

/** A field is quoted when it has to be, and a log always: its text isn't known beforehand. */
void appendField(std::string &text, std::string_view latin1, std::string_view end)
{
    if (latin1.find_first_of(",\"\r\n") == std::string_view::npos) {
        appendUtf8(text, latin1);
    } else {
        text += '"';
        for (const char character : latin1) {
            if (character == '"')
                text += '"';
            appendCharacter(text, static_cast<unsigned char>(character));
        }
        text += '"';
    }
    text += end;
}

void appendRowStart(std::string &text, const Entry &entry)
{
    appendField(text, entry.section, ",");
    appendField(text, entry.group, ",");
    appendField(text, entry.name, ",");
}

class TableSink : public EntrySink
{
public:
    TableSink(const Input &input, const Facts &facts, Output &receiver)
        : output(receiver)
    {
        std::string name;
        appendCleanUtf8(name, input.name);
        const bool plain = name.find_first_of(",\"\r\n") == std::string::npos;
        if (plain) {
            start = name;
        } else {
            start = '"';
            for (const char character : name)
                start.append(character == '"' ? 2 : 1, character);
            start += '"';
        }
        start += ',' + facts.generated + ',';
    }

    void entry(const Entry &entry) override
    {
        static const Prefixes prefixes(appendRowStart);
        if (entry.kind == Entry::Kind::Layout)
            return;
        endLog();
        std::string &text = output.text();
        text += start;
        if (entry.item)
            text += prefixes.of(*entry.item);
        else
            appendRowStart(text, entry);
        if (entry.kind == Entry::Kind::Log) {
            text += '"';
            inLog = true;
            return;
        }
        appendField(text, entry.text, ",");
        text += entry.number;
        text += ',';
        appendField(text, entry.number.empty() ? "" : entry.unit, ",");
        if (entry.error)
            text += std::to_string(*entry.error);
        text += "\r\n";
        output.write({});
    }

    void logText(std::string_view piece) override
    {
        for (const char character : piece) {
            if (character == '"')
                output.text() += '"';
            appendCharacter(output.text(), static_cast<unsigned char>(character));
        }
        output.write({});
    }

    void endLog()
    {
        if (inLog)
            output.write("\",,,\r\n");
        inLog = false;
    }

private:
    Output &output;
    std::string start;
    bool inLog = false;
};

} // namespace

const std::string_view tableHead = "file,generated,section,group,name,text,value,unit,error\r\n";

void appendUtf8(std::string &text, std::string_view latin1)
{
    for (const char character : latin1)
        appendCharacter(text, static_cast<unsigned char>(character));
}

void appendCleanUtf8(std::string &text, std::string_view utf8)
{
    while (!utf8.empty()) {
        const std::size_t size = characterSize(utf8);
        text += size == 0 ? replacement : utf8.substr(0, size);
        utf8.remove_prefix(std::max<std::size_t>(size, 1));
    }
}

std::string forTerminal(std::string_view utf8)
{
    std::string clean;
    appendCleanUtf8(clean, utf8);
    std::string text;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const auto byte = static_cast<unsigned char>(clean[i]);
        // Those of Latin-1 beyond ASCII are two bytes.
        const bool wide = byte == 0xC2 && static_cast<unsigned char>(clean[i + 1]) < 0xA0;
        if (byte < 0x20 || byte == 0x7F || wide)
            text += replacement;
        else
            text += clean[i];
        i += wide ? 1 : 0;
    }
    return text;
}

void appendJson(std::string &text, std::string_view latin1)
{
    text += '"';
    appendInside(text, latin1);
    text += '"';
}

void appendJsonUtf8(std::string &text, std::string_view utf8)
{
    text += '"';
    while (!utf8.empty()) {
        const std::size_t size = characterSize(utf8);
        if (size == 1)
            appendEscaped(text, static_cast<unsigned char>(utf8.front()));
        else
            text += size == 0 ? "\\ufffd" : utf8.substr(0, size);
        utf8.remove_prefix(std::max<std::size_t>(size, 1));
    }
    text += '"';
}

void writeJson(const Input &input, Output &output)
{
    Content content(input);
    const Facts facts = readFacts(content, input.name);
    std::string &text = output.text();
    text += "{\"file\":";
    appendJsonUtf8(text, input.name);
    text += ",\"generated\":";
    if (facts.generated.empty())
        text += "null";
    else
        appendJson(text, facts.generated);
    text +=
        facts.complete ? ",\"complete\":true,\"entries\":[" : ",\"complete\":false,\"entries\":[";
    JsonSink sink(output);
    content.read(sink);
    sink.endLog();
    output.write("]}\n");
}

void writeTable(const Input &input, Output &output)
{
    Content content(input);
    const Facts facts = readFacts(content, input.name);
    TableSink sink(input, facts, output);
    content.read(sink);
    sink.endLog();
}

} // namespace reports
