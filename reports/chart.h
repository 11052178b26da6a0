#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace reports {

struct Point {
    double seconds = 0; ///< since 1970
    double value = 0;
};

/** One value over time. Texts are Latin-1. */
struct Series {
    std::string title;
    std::string unit;
    std::vector<Point> points; ///< in the order of time
};

/** Seconds since 1970 of "2026-11-04T05:06:07", taken as UTC; 0 for what is none. */
double secondsOf(const std::string &isoTime);

/** A drawing in SVG, with axes, unit and values, to stand in a page. @param id unique in the page
 */
std::string chart(const Series &series, const std::string &id);

/** Appends text as HTML takes it, in UTF-8; characters that no page may have become U+FFFD. */
void appendHtml(std::string &html, std::string_view latin1);
void appendHtmlUtf8(std::string &html, std::string_view utf8);

} // namespace reports
