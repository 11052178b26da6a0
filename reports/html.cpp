#include "reports/html.h"

#include "reports/chart.h"

#include <algorithm>
#include <cmath>

namespace reports {

extern const char *const pageStyle;

namespace {

constexpr double largestDrawn = 1e12; ///< no unit has such values, and axes lose their steps beyond

/** The reports of one unit, the oldest first. */
struct Unit {
    std::string name; ///< Latin-1
    std::vector<const Report *> reports;

    const Report &newest() const { return *reports.back(); }
};

std::string_view serialNumber(const Report &report)
{
    const Entry *const entry = report.find(identitySection, "Mainboard", "Unit serial number");
    return entry && !entry->failed ? entry->text : std::string_view();
}

std::string dateText(const Report &report)
{
    std::string date = report.facts().generated;
    if (date.empty())
        return "date unknown";
    date[date.find('T')] = ' ';
    return date;
}

std::vector<Unit> unitsOf(const std::vector<Report> &reports)
{
    std::vector<Unit> units;
    for (const Report &report : reports) {
        const std::string_view serial = serialNumber(report);
        auto unit = std::find_if(units.begin(), units.end(),
            [&](const Unit &known) { return !serial.empty() && known.name == serial; });
        if (unit == units.end())
            unit = units.insert(units.end(), {std::string(serial), {}});
        unit->reports.push_back(&report);
    }
    for (Unit &unit : units) {
        std::stable_sort(
            unit.reports.begin(), unit.reports.end(), [](const Report *a, const Report *b) {
                return a->facts().generated < b->facts().generated;
            });
    }
    return units;
}

class Page
{
public:
    explicit Page(const std::vector<Rule> &known)
        : rules(known)
    {}

    std::string whole(const std::vector<Report> &reports)
    {
        const auto units = unitsOf(reports);
        head(units);
        if (reports.size() == 2) {
            const bool inOrder = reports[0].facts().generated <= reports[1].facts().generated;
            comparison(reports[inOrder ? 0 : 1], reports[inOrder ? 1 : 0]);
        } else {
            if (units.size() > 1)
                overview(units);
            for (std::size_t i = 0; i < units.size(); ++i)
                unitPart(units[i], i, units.size() > 1);
        }
        html += "</main>\n</body>\n</html>\n";
        return std::move(html);
    }

private:
    void text(std::string_view latin1) { appendHtml(html, latin1); }
    void fileName(const Report &report) { appendHtmlUtf8(html, report.name()); }

    void unitName(const Unit &unit)
    {
        if (unit.name.empty())
            fileName(unit.newest());
        else
            text("Unit " + unit.name);
    }

    void head(const std::vector<Unit> &units)
    {
        html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                "style-src 'unsafe-inline'\">\n<title>System report: ";
        if (units.size() == 1)
            unitName(units.front());
        else
            text(std::to_string(units.size()) + " units");
        html += "</title>\n<style>\n";
        html += pageStyle;
        html += "</style>\n</head>\n<body>\n<header><h1>System report</h1></header>\n<main>\n";
    }

    void about(const Report &report)
    {
        html += "<p class=\"soft\">";
        fileName(report);
        text(", " + dateText(report));
        if (!report.facts().complete)
            html += ", <strong>not complete</strong>";
        html += "</p>\n";
    }

    void findings(const Report &report, const std::string &heading)
    {
        const auto found = check(report, rules);
        html += "<h3>" + heading + "</h3>\n";
        if (found.empty()) {
            html += "<p>Nothing that the rules know of.</p>\n";
            return;
        }
        html += "<ul class=\"findings\">\n";
        // The graver first; within a level as the report has them.
        for (const Rule::Level level : {Rule::Level::Fail, Rule::Level::Warn}) {
            for (const Finding &finding : found) {
                if (finding.level == level)
                    findingLine(finding);
            }
        }
        html += "</ul>\n";
    }

    void findingLine(const Finding &finding)
    {
        const std::string level = levelName(finding.level);
        html += "<li class=\"" + level + "\"><span class=\"level\">" + level + "</span>";
        if (!finding.place.empty())
            appendHtmlUtf8(html, finding.place + ": ");
        html += "<strong>";
        appendHtmlUtf8(html, finding.name + (finding.entry ? ": " : " ") + finding.text);
        html += "</strong>";
        if (!finding.limit.empty())
            appendHtmlUtf8(html, ", should be " + finding.limit);
        html += "<span class=\"why\">";
        appendHtmlUtf8(html, finding.reason);
        html += "</span></li>\n";
    }

    void row(const Entry &entry)
    {
        html += entry.failed ? "<tr class=\"failed\"><th scope=\"row\">" : "<tr><th scope=\"row\">";
        text(entry.name.empty() ? "(unknown line)" : entry.name);
        html += "</th><td>";
        text(entry.text);
        html += "</td></tr>\n";
    }

    /** Heading and table for each section and group. */
    template <typename Rows, typename EntryOf, typename RowOf>
    void tables(
        const Rows &rows, const char *columns, const char *kind, EntryOf entryOf, RowOf rowOf)
    {
        const Entry *last = nullptr;
        for (const auto &item : rows) {
            const Entry &entry = entryOf(item);
            if (!last || last->section != entry.section || last->group != entry.group) {
                html += last ? "</tbody></table>\n" : "";
                if (!last || last->section != entry.section) {
                    html += "<h3>";
                    text(entry.section.empty() ? "Before the first section" : entry.section);
                    html += "</h3>\n";
                }
                html += std::string("<table class=\"") + kind + "\"><caption>";
                text(entry.group.empty() ? "Values" : entry.group);
                html += std::string("</caption><thead><tr>") + columns + "</tr></thead><tbody>\n";
            }
            rowOf(item);
            last = &entry;
        }
        html += last ? "</tbody></table>\n" : "";
    }

    void sections(const Report &report)
    {
        tables(
            report.entries(), "<th scope=\"col\">Name</th><th scope=\"col\">Value</th>", "one",
            [](const Entry &entry) -> const Entry & { return entry; },
            [&](const Entry &entry) {
                Entry shown = entry;
                const std::string size = entryText(report, &entry);
                if (entry.kind == Entry::Kind::Log)
                    shown.text = size;
                row(shown);
            });
        logs(report);
    }

    void logs(const Report &report)
    {
        for (const LogFile &log : report.logs()) {
            html += "<details><summary>";
            text("The end of " + log.name);
            html += "</summary><pre tabindex=\"0\">";
            text(log.end.substr(log.end.size() - std::min<std::size_t>(log.end.size(), 20000)));
            html += "</pre></details>\n";
        }
    }

    void comparison(const Report &before, const Report &after)
    {
        html += "<section class=\"unit\" aria-labelledby=\"unit-1\">\n<h2 id=\"unit-1\">";
        const bool same = serialNumber(before) == serialNumber(after);
        text(same && !serialNumber(after).empty() ? "Unit " + std::string(serialNumber(after))
                                                  : std::string("Two reports side by side"));
        html += "</h2>\n";
        about(before);
        about(after);
        findings(after, "To look at in the newer report");
        findings(before, "To look at in the older report");
        const auto pairs = compare(before, after, defaultTolerances());
        const auto count = std::count_if(
            pairs.begin(), pairs.end(), [](const Pair &pair) { return pair.changed; });
        html += "<h3 id=\"side\">Side by side</h3>\n<p>" + std::to_string(count) +
                (count == 1 ? " line" : " lines") + " changed, and are marked.</p>\n";
        std::string columns = "<th scope=\"col\">Name</th>";
        for (const Report *report : {&before, &after}) {
            columns += "<th scope=\"col\">";
            appendHtml(columns, dateText(*report));
            columns += "</th>";
        }
        columns += "<th scope=\"col\">Change</th>";
        tables(
            pairs, columns.c_str(), "two",
            [](const Pair &pair) -> const Entry & { return pair.either(); },
            [&](const Pair &pair) { pairRow(before, after, pair); });
        logs(after);
        html += "</section>\n";
    }

    void pairRow(const Report &before, const Report &after, const Pair &pair)
    {
        html +=
            pair.changed ? "<tr class=\"changed\"><th scope=\"row\">" : "<tr><th scope=\"row\">";
        text(pair.either().name.empty() ? "(unknown line)" : pair.either().name);
        html += "</th><td>";
        text(entryText(before, pair.before));
        html += "</td><td>";
        text(entryText(after, pair.after));
        html += "</td><td>";
        const std::string difference = pair.difference();
        if (pair.changed)
            text(difference.empty() ? "changed" : difference);
        html += "</td></tr>\n";
    }

    void overview(const std::vector<Unit> &units)
    {
        html += "<h2 id=\"units\">Units</h2>\n<table class=\"fleet\"><thead><tr><th "
                "scope=\"col\">Unit</th>";
        for (const char *column : {"Reports", "Newest", "FAIL", "WARN", "Supervisor", "Run time"})
            html += std::string("<th scope=\"col\">") + column + "</th>";
        html += "</tr></thead><tbody>\n";
        for (std::size_t i = 0; i < units.size(); ++i) {
            html += "<tr><th scope=\"row\"><a href=\"#unit-" + std::to_string(i + 1) + "\">";
            unitName(units[i]);
            html += "</a></th>";
            overviewCells(units[i]);
            html += "</tr>\n";
        }
        html += "</tbody></table>\n";
    }

    /** @param column told again with the cell, for narrow screens */
    void cell(const char *column, std::string_view content, const char *kind = "")
    {
        html += std::string("<td class=\"") + kind + "\" data-column=\"" + column + "\">";
        text(content);
        html += "</td>";
    }

    void overviewCells(const Unit &unit)
    {
        const Report &newest = unit.newest();
        const auto found = check(newest, rules);
        cell("Reports", std::to_string(unit.reports.size()));
        cell("Newest", dateText(newest));
        for (const Rule::Level level : {Rule::Level::Fail, Rule::Level::Warn}) {
            const auto count = std::count_if(found.begin(), found.end(),
                [level](const Finding &finding) { return finding.level == level; });
            cell(levelName(level), std::to_string(count), count ? levelName(level) : "");
        }
        const Entry *const supervisor = newest.find(softwareSection, "", "System Supervisor");
        const Entry *const runTime = newest.find(historySection, "", "Total run time");
        cell("Supervisor", supervisor ? supervisor->text : "");
        cell("Run time", runTime ? runTime->text : "");
    }

    void unitPart(const Unit &unit, std::size_t index, bool several)
    {
        const std::string id = "unit-" + std::to_string(index + 1);
        html += "<section class=\"unit\" aria-labelledby=\"" + id + "\">\n<h2 id=\"" + id + "\">";
        unitName(unit);
        html += "</h2>\n";
        about(unit.newest());
        findings(unit.newest(), "To look at");
        if (unit.reports.size() > 1)
            trends(unit, id);
        sections(unit.newest());
        if (several)
            html += "<p><a href=\"#units\">All units</a></p>\n";
        html += "</section>\n";
    }

    /** Values that are worth to be looked at over time. */
    static bool isTrend(const Entry &entry)
    {
        if (entry.number.empty() || !entry.item)
            return false;
        return entry.section == railSection || entry.section == storageSection ||
               entry.section == historySection ||
               (entry.group == "Battery" && entry.item->shape != Shape::Minutes);
    }

    static Series seriesOf(const Unit &unit, const Entry &entry)
    {
        Series series;
        series.title = std::string(entry.name);
        if (entry.section == storageSection)
            series.title.append(", ").append(entry.group);
        series.unit = std::string(entry.unit);
        for (const Report *report : unit.reports) {
            const Entry *const same = report->find(entry.section, entry.group, entry.name);
            const auto value = same ? numberOf(same->number) : std::nullopt;
            if (value && std::abs(*value) <= largestDrawn && !report->facts().generated.empty())
                series.points.push_back({secondsOf(report->facts().generated), *value});
        }
        return series;
    }

    void trends(const Unit &unit, const std::string &id)
    {
        html += "<h3>Trends</h3>\n<p>" + std::to_string(unit.reports.size()) +
                " reports, by their dates.</p>\n<div class=\"charts\">\n";
        std::vector<std::string_view> drawn;
        std::string still;
        for (const Entry &entry : unit.newest().entries()) {
            const std::string_view name = entry.name;
            const bool again = entry.section == historySection &&
                               std::find(drawn.begin(), drawn.end(), name) != drawn.end();
            if (!isTrend(entry) || again)
                continue;
            drawn.push_back(name);
            const Series series = seriesOf(unit, entry);
            if (series.points.size() < 2)
                continue;
            if (isStill(series)) {
                still += still.empty() ? "" : ", ";
                appendHtml(still, series.title + " ");
                appendHtml(still, entry.text);
                continue;
            }
            html += "<figure><figcaption>";
            text(series.title);
            html += "</figcaption>" + chart(series, id + "-" + std::to_string(drawn.size())) +
                    "</figure>\n";
        }
        html += "</div>\n";
        if (!still.empty())
            html += "<p>The same in all of them: " + still + ".</p>\n";
    }

    static bool isStill(const Series &series)
    {
        return std::all_of(series.points.begin(), series.points.end(),
            [&](const Point &point) { return point.value == series.points.front().value; });
    }

    const std::vector<Rule> &rules;
    std::string html;
};

} // namespace

std::string htmlPage(const std::vector<Report> &reports, const std::vector<Rule> &rules)
{
    return Page(rules).whole(reports);
}

} // namespace reports
