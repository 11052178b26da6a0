#include "telematics/gpsParser.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t chunkSize = 512;

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

void checkTexts(std::string_view line, const GpsTexts &texts, const GpsFields &fields)
{
    const bool rmc = contains(line, "$GPRMC,");
    const bool gga = contains(line, "$GPGGA,");
    REQUIRE(rmc || !(texts.time || texts.position || texts.speed));
    REQUIRE(gga || !(texts.altitude || texts.satellites));
    REQUIRE(contains(line, "$PFST,FOM,") || !texts.accuracy);
    // A time that is too short silences the whole line.
    REQUIRE(!rmc || fields[0].size() >= 4 || !(texts.altitude || texts.satellites));
    if (texts.time)
        REQUIRE(texts.time->substr(0, 2) == "20" && contains(*texts.time, " - "));
    if (texts.position)
        REQUIRE(endsWith(*texts.position, " ") || endsWith(*texts.position, " - INVALID"));
    if (texts.speed)
        REQUIRE(contains(*texts.speed, " knots, Heading: ") && endsWith(*texts.speed, " degrees"));
    if (texts.altitude)
        REQUIRE(endsWith(*texts.altitude, " meters") && texts.altitude->size() > 7);
    if (texts.satellites)
        REQUIRE(!contains(*texts.satellites, "."));
    if (texts.accuracy)
        REQUIRE(endsWith(*texts.accuracy, " meters"));
}

/** All bytes of a chunk are in its lines, unless one of them is too long. */
void checkChunk(std::string_view chunk, GpsFields &fields)
{
    GpsLines lines(chunk);
    std::size_t seen = 0;
    for (std::size_t count = 0; !lines.atEnd() && !lines.stuck(); ++count) {
        REQUIRE(count <= chunk.size());
        const auto line = lines.next();
        REQUIRE(line.size() <= GpsLines::maxLength);
        REQUIRE(!contains(line, "\n"));
        seen += line.size() + (lines.atEnd() || lines.stuck() ? 0 : 1);
        checkTexts(line, readGpsLine(line, fields), fields);
    }
    REQUIRE(lines.stuck() ? lines.next().empty() && seen < chunk.size() : seen == chunk.size());
    REQUIRE(fields[19].empty());
}

} // namespace

void checkGpsBytes(const std::uint8_t *bytes, std::size_t size)
{
    // A copy of its own for each, so that a step across its end is seen.
    GpsFields fields;
    for (std::size_t start = 0; start < size; start += chunkSize) {
        const std::vector<char> chunk(bytes + start, bytes + std::min(start + chunkSize, size));
        const auto end = std::find(chunk.begin(), chunk.end(), '\0');
        checkChunk({chunk.data(), std::size_t(end - chunk.begin())}, fields);
    }
    const std::vector<char> whole(bytes, bytes + size);
    const std::string_view line(whole.data(), whole.size());
    splitGpsLine(line, fields);
    GpsTexts texts;
    readRmc(line, fields, texts);
    readGga(line, fields, texts);
    if (contains(line, "$PFST,FOM,"))
        readFom(line, texts);
}
