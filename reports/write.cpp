#include "reports/write.h"

namespace reports {

namespace {

void appendBanner(std::string &text, std::string_view title)
{
    text += '\n';
    text += bannerEdge;
    text += "  ";
    text += title;
    text += "  ";
    text += bannerEdge;
    text += '\n';
}

/** Blank lines and rules that belong to a line. */
void appendItem(std::string &text, Entry entry)
{
    const bool inSecond = entry.group == secondStorage && !entry.failed;
    const std::string rule = std::string(storageRule) + '\n';
    if (inSecond && entry.name == "Device serial number")
        text += rule;
    if (entry.name == "BIOS version")
        text += '\n';
    if (entry.name == "Soft transitions")
        text += "Automatic backlight settings:\n";
    if (entry.item) {
        const Shape shape = entry.item->shape;
        const bool blank =
            shape == Shape::Text || shape == Shape::Number || shape == Shape::Minutes;
        entry.tail = blank && !entry.failed ? " " : "";
        entry.continued = entry.name == minimumTemp;
    }
    appendSource(text, entry);
    if (entry.name == "Sampling mode")
        text += '\n';
    if (inSecond && entry.name == initialTime)
        text += rule;
}

} // namespace

std::string reportText(std::string_view date, std::span<const Entry> entries)
{
    std::string text = "\n" + std::string(datePrefix) + std::string(date) + "\n";
    for (const std::string_view section : sections()) {
        appendBanner(text, section);
        const auto appendGroup = [&](std::string_view group, bool grouped) {
            for (const Entry &entry : entries) {
                if (entry.kind != Entry::Kind::Layout && entry.section == section &&
                    (!grouped || entry.group == group))
                    appendItem(text, entry);
            }
        };
        bool first = true;
        for (const Heading &heading : headings()) {
            if (heading.section != section || heading.line == "Automatic backlight settings:")
                continue;
            text += first ? "" : "\n";
            text += heading.line;
            text += '\n';
            appendGroup(heading.group, true);
            first = false;
        }
        if (first)
            appendGroup({}, false);
    }
    return text;
}

} // namespace reports
