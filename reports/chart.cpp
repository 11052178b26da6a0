#include "reports/chart.h"

#include "reports/exchange.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace reports {

namespace {

// Of the drawing, in its own units.
constexpr double width = 300;
constexpr double height = 150;
constexpr double left = 52;
constexpr double right = 286;
constexpr double top = 24;
constexpr double bottom = 124;
constexpr std::size_t labelled = 6; ///< so many points have room for their values

std::string place(double value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    return text.data();
}

/** Days since 1970 and back, by the calendar that everybody uses now. */
long long daysOf(long long year, unsigned month, unsigned day)
{
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const long long yearOfEra = year - era * 400;
    const long long dayOfYear = (153 * (month + (month > 2 ? -3LL : 9LL)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

std::string dateOf(double seconds)
{
    const long long days = static_cast<long long>(std::floor(seconds / 86400)) + 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const long long dayOfEra = days - era * 146097;
    const long long yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long shifted = (5 * dayOfYear + 2) / 153;
    const long long month = shifted < 10 ? shifted + 3 : shifted - 9;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04lld-%02lld-%02lld",
        yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month,
        dayOfYear - (153 * shifted + 2) / 5 + 1);
    return text.data();
}

/** The values that an axis shows: round steps around all of them. */
struct Axis {
    double low;
    double high;
    double step;

    explicit Axis(const std::vector<Point> &points)
    {
        const auto byValue = [](const Point &a, const Point &b) { return a.value < b.value; };
        const auto [least, most] = std::minmax_element(points.begin(), points.end(), byValue);
        double span = most->value - least->value;
        if (span <= 0)
            span = std::max(std::abs(most->value) * 0.02, 1e-6);
        const double power = std::pow(10, std::floor(std::log10(span / 2)));
        step = power;
        for (const double factor : {2.0, 5.0, 10.0}) {
            if (span / step > 3)
                step = factor * power;
        }
        low = std::floor(least->value / step) * step;
        high = std::ceil(most->value / step) * step;
        if (high <= low)
            high = std::nextafter(low + step, HUGE_VAL);
    }

    double y(double value) const { return bottom - (value - low) / (high - low) * (bottom - top); }
};

void appendText(std::string &svg, double x, double y, const char *anchor, std::string_view text)
{
    svg += "<text x=\"" + place(x) + "\" y=\"" + place(y) + "\" text-anchor=\"" + anchor + "\">";
    appendHtml(svg, text);
    svg += "</text>";
}

void appendAxes(std::string &svg, const Axis &axis)
{
    // Counted, since a step may be too small to move a large value.
    const double steps = std::min(20.0, std::round((axis.high - axis.low) / axis.step));
    for (int i = 0; i <= int(steps); ++i) {
        const double value = axis.low + i * axis.step;
        const std::string y = place(axis.y(value));
        svg += "<path class=\"grid\" d=\"M" + place(left) + " " + y + "H" + place(right) + "\"/>";
        // Steps are round numbers, but their sums are not.
        const double shown = std::abs(value) < axis.step / 1e6 ? 0 : value;
        appendText(svg, left - 5, axis.y(value) + 3.5, "end", numberText(shown));
    }
    svg += "<path class=\"axis\" d=\"M" + place(left) + " " + place(top) + "V" + place(bottom) +
           "H" + place(right) + "\"/>";
}

} // namespace

double secondsOf(const std::string &isoTime)
{
    long long year = 0;
    unsigned month = 0;
    unsigned day = 0;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    if (std::sscanf(isoTime.c_str(), "%lld-%u-%uT%u:%u:%u", &year, &month, &day, &hour, &minute,
            &second) != 6)
        return 0;
    return double(daysOf(year, month, day)) * 86400 + hour * 3600.0 + minute * 60.0 + second;
}

std::string chart(const Series &series, const std::string &id)
{
    const auto &points = series.points;
    const Axis axis(points);
    const double first = points.front().seconds;
    const double span = points.back().seconds - first;
    const auto x = [&](std::size_t i) {
        const double share = span > 0 ? (points[i].seconds - first) / span : 0.5;
        return left + 12 + share * (right - left - 24);
    };
    std::string svg = "<svg viewBox=\"0 0 " + place(width) + " " + place(height) +
                      "\" role=\"img\" aria-labelledby=\"" + id + " " + id + "d\"><title id=\"" +
                      id + "\">";
    appendHtml(svg, series.title);
    svg += "</title><desc id=\"" + id + "d\">";
    for (const Point &point : points) {
        svg += dateOf(point.seconds) + ": " + numberText(point.value) + " ";
        appendHtml(svg, series.unit + "; ");
    }
    svg += "</desc>";
    appendAxes(svg, axis);
    appendText(svg, left - 5, 9, "end", series.unit);
    appendText(svg, left, bottom + 16, "start", dateOf(first));
    if (span > 0)
        appendText(svg, right, bottom + 16, "end", dateOf(points.back().seconds));
    svg += "<path class=\"line\" d=\"";
    for (std::size_t i = 0; i < points.size(); ++i)
        svg += (i == 0 ? "M" : "L") + place(x(i)) + " " + place(axis.y(points[i].value));
    svg += "\"/>";
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double y = axis.y(points[i].value);
        svg += "<circle cx=\"" + place(x(i)) + "\" cy=\"" + place(y) + "\" r=\"2.5\"/>";
        if (points.size() <= labelled || i + 1 == points.size())
            appendText(
                svg, std::min(x(i), right - 12), y - 5, "middle", numberText(points[i].value));
    }
    return svg + "</svg>";
}

void appendHtml(std::string &html, std::string_view latin1)
{
    for (const char character : latin1) {
        switch (character) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default: {
            const auto byte = static_cast<unsigned char>(character);
            const bool control =
                (byte < 0x20 && byte != '\n' && byte != '\t') || (byte >= 0x7F && byte < 0xA0);
            if (control)
                html += "\xEF\xBF\xBD"; // U+FFFD
            else
                appendUtf8(html, {&character, 1});
        }
        }
    }
}

void appendHtmlUtf8(std::string &html, std::string_view utf8)
{
    std::string clean;
    appendCleanUtf8(clean, utf8);
    for (const char character : clean) {
        if (static_cast<unsigned char>(character) < 0x80)
            appendHtml(html, {&character, 1});
        else
            html += character;
    }
}

} // namespace reports
