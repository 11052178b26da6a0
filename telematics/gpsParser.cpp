#include "telematics/gpsParser.h"

#include <algorithm>

namespace {

constexpr std::string_view rmcName = "$GPRMC,";
constexpr std::string_view ggaName = "$GPGGA,";
constexpr std::string_view fomName = "$PFST,FOM,";
constexpr std::size_t usedFields = 19;

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/** "12:35:19" of "123519.000"; none if the seconds would start behind the end. */
std::optional<std::string> timeText(std::string_view time)
{
    if (time.size() < 4)
        return std::nullopt;
    std::string text;
    text.append(time.substr(0, 2)).append(":");
    text.append(time.substr(2, 2)).append(":");
    text.append(time.substr(4, 2));
    return text;
}

/** "2024-03-23 - 12:35:19" of "230324" and the time. The receiver doesn't tell the century. */
std::optional<std::string> dateText(std::string_view date, const std::string &time)
{
    if (date.size() <= 5)
        return std::nullopt;
    std::string text = "20";
    text.append(date.substr(4, 2)).append("-");
    text.append(date.substr(2, 2)).append("-");
    text.append(date.substr(0, 2)).append(" - ");
    text.append(time);
    return text;
}

} // namespace

std::string_view GpsLines::next()
{
    if (failed)
        return {};
    const auto lineFeed = rest.substr(0, maxLength + 1).find('\n');
    if (lineFeed != std::string_view::npos) {
        const auto line = rest.substr(0, lineFeed);
        rest.remove_prefix(lineFeed + 1);
        return line;
    }
    failed = rest.size() > maxLength;
    ended = !failed;
    const auto line = rest.substr(0, maxLength);
    rest = {};
    return line;
}

GpsTexts readGpsLine(std::string_view line, GpsFields &fields)
{
    GpsTexts texts;
    if (contains(line, rmcName) && !readRmc(line, fields, texts))
        return texts;
    if (contains(line, ggaName))
        readGga(line, fields, texts);
    if (contains(line, fomName))
        readFom(line, texts);
    return texts;
}

void splitGpsLine(std::string_view line, GpsFields &fields)
{
    constexpr auto none = std::string_view::npos;
    auto comma = line.find(',');
    if (comma == none)
        return;
    for (std::size_t count = 0; count < usedFields; ++count) {
        const auto start = comma + 1;
        comma = line.find(',', start);
        if (comma == none)
            return;
        fields[count] = line.substr(start, comma - start);
    }
}

bool readRmc(std::string_view line, GpsFields &fields, GpsTexts &texts)
{
    splitGpsLine(line, fields);
    const auto &time = fields[0];
    const auto &status = fields[1];
    const auto &latitude = fields[2];
    const auto &northSouth = fields[3];
    const auto &longitude = fields[4];
    const auto &eastWest = fields[5];
    const auto &knots = fields[6];
    const auto &course = fields[7];
    const auto &date = fields[8];
    const auto clock = timeText(time);
    if (!clock)
        return false;
    const bool positionValid = status == "A";
    texts.time = dateText(date, *clock);
    // Without decimal points the entries are empty, cut, or left over from another sentence.
    if (contains(longitude, ".") && contains(latitude, "."))
        texts.position = latitude + northSouth + " " + longitude + eastWest +
                         (positionValid ? " " : " - INVALID");
    texts.speed = knots + " knots" + ", Heading: " + course + " degrees";
    return true;
}

void readGga(std::string_view line, GpsFields &fields, GpsTexts &texts)
{
    splitGpsLine(line, fields);
    const auto &satellites = fields[6];
    const auto &altitude = fields[8];
    // Long without a decimal point, or a count with one: a stale or a misplaced field.
    if (!altitude.empty() && (altitude.size() <= 5 || contains(altitude, ".")))
        texts.altitude = altitude + " meters";
    if (!contains(satellites, "."))
        texts.satellites = satellites;
}

void readFom(std::string_view line, GpsTexts &texts)
{
    // The sentence is taken to start the line: what a line has in front of it shifts the value.
    const auto start = std::min(fomName.size(), line.size());
    const auto star = line.find('*');
    const bool inPlace = star != std::string_view::npos && star >= start;
    const auto value = line.substr(start, inPlace ? star - start : std::string_view::npos);
    texts.accuracy = std::string(value) + " meters";
}
