#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/*
 * From a chunk of a GPS receiver's talk to the texts of the display: plain values, no thread and no
 * line needed. Nothing is converted to numbers and no checksum is looked at; what is shown are the
 * receiver's own characters. Any bytes are allowed everywhere.
 */

/**
 * The fields of the sentences read so far. One table for the whole life of a reader: a line with
 * fewer commas leaves the later entries as an earlier line wrote them. The last one stays unused.
 */
using GpsFields = std::array<std::string, 20>;

/**
 * Cuts a chunk into lines at the line feeds, which are dropped; a carriage return stays. The chunk
 * must outlive the object and what it handed out.
 */
class GpsLines
{
public:
    /** The longest line that can be taken. */
    static constexpr std::size_t maxLength = 511;

    explicit GpsLines(std::string_view chunk)
        : rest(chunk)
    {}

    /** Whether the chunk's end was met. A chunk that ends in a line feed has one more, empty line.
     */
    bool atEnd() const { return ended; }
    /** Whether a line was longer than maxLength. From there on next() gives empty lines and the
     *  end is never met. */
    bool stuck() const { return failed; }
    /** The next line, or of one that is too long its beginning. */
    std::string_view next();

private:
    std::string_view rest;
    bool ended = false;
    bool failed = false;
};

/** Whether a line holds such a sentence, anywhere in it. */
bool holdsRmc(std::string_view line);
bool holdsGga(std::string_view line);
bool holdsFom(std::string_view line);

/** Writes what stands between the commas of the line into the table, from entry 0 on, 19 entries at
 *  most. The sentence name before the first comma and what follows the last one are left out. */
void splitGpsLine(std::string_view line, GpsFields &fields);

/** What a "$GPRMC," line has to show. */
struct RmcTexts {
    std::optional<std::string> time;     ///< "2024-03-23 - 12:35:19"; none without a date
    std::optional<std::string> position; ///< "4807.038N 01131.000E "; none without decimal points
    std::string speed;                   ///< "022.4 knots, Heading: 084.4 degrees"
};
/** None at all if the time is too short to be cut into hours, minutes and seconds. */
std::optional<RmcTexts> readRmc(std::string_view line, GpsFields &fields);

/** What a "$GPGGA," line has to show. */
struct GgaTexts {
    std::optional<std::string> altitude;   ///< "545.4 meters"; none if empty or hardly an altitude
    std::optional<std::string> satellites; ///< "08"; none if hardly a count
};
GgaTexts readGga(std::string_view line, GpsFields &fields);

/** The accuracy of a "$PFST,FOM," line: "12.5 meters". */
std::string readFom(std::string_view line);
