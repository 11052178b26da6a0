#include "reports/diff.h"

#include "reports/exchange.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <ostream>
#include <tuple>

namespace reports {

namespace {

/** Names of a tolerance by what it is for. */
std::string_view livingKind(const Entry &entry)
{
    if (!entry.item)
        return {};
    if (entry.section == railSection)
        return "rail";
    if (entry.item->shape == Shape::Minutes)
        return "runtime";
    if (entry.item->unit == "\260C" || entry.item->unit == " deg C")
        return "temperature";
    if (entry.name == "Battery voltage level")
        return "level";
    return {};
}

const LogFile *logOf(const Report &report, const Entry &entry)
{
    for (const LogFile &log : report.logs()) {
        if (log.name == entry.name)
            return &log;
    }
    return nullptr;
}

bool hasChanged(const Pair &pair, const std::vector<Tolerance> &tolerances)
{
    if (!pair.before || !pair.after)
        return true;
    if (pair.before->text == pair.after->text)
        return false;
    const auto before = numberOf(pair.before->number);
    const auto after = numberOf(pair.after->number);
    const std::string_view kind = livingKind(*pair.before);
    for (const Tolerance &tolerance : tolerances) {
        if (tolerance.name != kind || !before || !after)
            continue;
        const double allowed =
            tolerance.percent ? std::abs(*before) * tolerance.amount / 100 : tolerance.amount;
        // Numbers that differ by just so much are not told apart by the last bit.
        return std::abs(*after - *before) > allowed * (1 + 1e-9);
    }
    return true;
}

/** Entries of one name are told apart by their order, unknown lines by their text. */
using Key = std::tuple<std::string_view, std::string_view, std::string_view, std::string_view, int>;

class Keys
{
public:
    Key of(const Entry &entry)
    {
        const std::string_view text = entry.name.empty() ? entry.text : std::string_view();
        Key key{entry.section, entry.group, entry.name, text, 0};
        std::get<4>(key) = counts[key]++;
        return key;
    }

private:
    std::map<Key, int> counts;
};

bool samePlace(const Entry &one, const Entry &other)
{
    return one.section == other.section && one.group == other.group;
}

void printText(
    std::ostream &out, const Pair &pair, const std::string &before, const std::string &after)
{
    std::string line = "  ";
    const Entry &entry = pair.either();
    appendUtf8(line, entry.name.empty() ? "(unknown line)" : entry.name);
    line += ": ";
    appendUtf8(line, before);
    if (before != after) {
        line += " -> ";
        appendUtf8(line, after);
        const std::string difference = pair.difference();
        if (!difference.empty()) {
            line += " (";
            appendUtf8(line, difference);
            line += ')';
        }
    }
    out << forTerminal(line) << '\n';
}

void printObject(
    std::ostream &out, const Pair &pair, const std::string &before, const std::string &after)
{
    const Entry &entry = pair.either();
    std::string line = "{\"section\":";
    appendJson(line, entry.section);
    line += ",\"group\":";
    appendJson(line, entry.group);
    line += ",\"name\":";
    if (entry.name.empty())
        line += "null";
    else
        appendJson(line, entry.name);
    line += ",\"old\":";
    if (pair.before)
        appendJson(line, before);
    else
        line += "null";
    line += ",\"new\":";
    if (pair.after)
        appendJson(line, after);
    else
        line += "null";
    line += ",\"difference\":";
    const std::string difference = pair.difference();
    if (difference.empty())
        line += "null";
    else
        appendJson(line, difference);
    out << line << (pair.changed ? ",\"changed\":true}\n" : ",\"changed\":false}\n");
}

} // namespace

std::vector<Tolerance> defaultTolerances()
{
    return {
        {"rail", 2, true, "supply voltages, V or per cent"},
        {"temperature", 5, false, "temperatures, degrees C"},
        {"runtime", 60, false, "run times, minutes"},
        {"level", 5, false, "the battery's level, points of a hundred"},
    };
}

void setTolerance(std::vector<Tolerance> &tolerances, std::string_view text)
{
    const std::size_t equals = text.find('=');
    const std::string_view name = text.substr(0, equals);
    std::string names;
    for (Tolerance &tolerance : tolerances) {
        names += (names.empty() ? "" : ", ") + std::string(tolerance.name);
        if (tolerance.name != name || equals == std::string_view::npos)
            continue;
        std::string_view amount = text.substr(equals + 1);
        tolerance.percent = amount.ends_with('%');
        if (tolerance.percent)
            amount.remove_suffix(1);
        const auto number = numberOf(amount);
        if (!number || *number < 0)
            throw Trouble{"\"" + std::string(text) +
                          "\" is no tolerance: it takes a number or per cent, as rail=2%"};
        tolerance.amount = *number;
        return;
    }
    throw Trouble{"\"" + std::string(text) + "\" is no tolerance: there are " + names};
}

std::string Pair::difference() const
{
    if (!before || !after)
        return {};
    const auto old = numberOf(before->number);
    const auto now = numberOf(after->number);
    if (!old || !now || *old == *now)
        return {};
    std::string text = numberText(*now - *old);
    if (*now > *old)
        text.insert(text.begin(), '+');
    if (!after->unit.empty())
        text.append(" ").append(after->unit);
    return text;
}

std::vector<Pair> compare(
    const Report &before, const Report &after, const std::vector<Tolerance> &tolerances)
{
    std::map<Key, const Entry *> others;
    std::vector<std::pair<Key, const Entry *>> order;
    Keys keys;
    for (const Entry &entry : after.entries())
        order.emplace_back(keys.of(entry), &entry);
    others.insert(order.begin(), order.end());

    std::vector<Pair> pairs;
    Keys oldKeys;
    for (const Entry &entry : before.entries()) {
        const auto found = others.find(oldKeys.of(entry));
        pairs.push_back({&entry, found == others.end() ? nullptr : found->second, false});
        if (found != others.end())
            others.erase(found);
    }
    for (const auto &[key, entry] : order) {
        if (!others.contains(key))
            continue;
        // Behind the last of its group.
        const auto last = std::find_if(pairs.rbegin(), pairs.rend(),
            [entry = entry](const Pair &pair) { return samePlace(pair.either(), *entry); });
        pairs.insert(last == pairs.rend() ? pairs.end() : last.base(), {nullptr, entry, false});
    }
    for (Pair &pair : pairs) {
        pair.changed = hasChanged(pair, tolerances);
        if (pair.either().kind == Entry::Kind::Log && pair.before && pair.after) {
            const LogFile *const old = logOf(before, *pair.before);
            const LogFile *const now = logOf(after, *pair.after);
            pair.changed =
                old && now && (old->bytes != now->bytes || old->fingerprint != now->fingerprint);
        }
    }
    return pairs;
}

std::string entryText(const Report &report, const Entry *entry)
{
    if (!entry)
        return "absent";
    const LogFile *const log = entry->kind == Entry::Kind::Log ? logOf(report, *entry) : nullptr;
    if (!log)
        return std::string(entry->text);
    return std::to_string(log->lines) + " lines, " + std::to_string(log->bytes) + " bytes";
}

std::string placeName(const Entry &entry)
{
    std::string name(entry.section.empty() ? "(no section)" : entry.section);
    if (!entry.group.empty())
        name.append(", ").append(entry.group);
    return name;
}

bool printDiff(
    std::ostream &out, const Report &before, const Report &after, const DiffOptions &options)
{
    bool any = false;
    std::string place;
    for (const Pair &pair : compare(before, after, options.tolerances)) {
        any = any || pair.changed;
        if (!pair.changed && !options.all)
            continue;
        std::string here;
        appendUtf8(here, placeName(pair.either()));
        std::string old = entryText(before, pair.before);
        const std::string now = entryText(after, pair.after);
        if (pair.changed && old == now)
            old += ", other text"; // two logs of one size
        if (options.json) {
            printObject(out, pair, old, now);
            continue;
        }
        if (here != place)
            out << forTerminal(here) << '\n';
        place = here;
        printText(out, pair, old, now);
    }
    return any;
}

} // namespace reports
