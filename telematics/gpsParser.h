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

/** What one line has to show, in the order in which it is shown. */
struct GpsTexts {
    std::optional<std::string> time;     ///< "2024-03-23 - 12:35:19"
    std::optional<std::string> position; ///< "4807.038N 01131.000E ", " - INVALID" behind it if so
    std::optional<std::string> speed;    ///< "022.4 knots, Heading: 084.4 degrees"
    std::optional<std::string> altitude; ///< "545.4 meters"
    std::optional<std::string> satellites; ///< "08"
    std::optional<std::string> accuracy;   ///< "12.5 meters"
};

/** Looks for the three kinds of sentences, which may all stand in one line. */
GpsTexts readGpsLine(std::string_view line, GpsFields &fields);

/** Writes what stands between the commas of the line into the table, from entry 0 on, 19 entries at
 *  most. The sentence name before the first comma and what follows the last one are left out. */
void splitGpsLine(std::string_view line, GpsFields &fields);

/** A line with "$GPRMC,": time, position and speed. False, and no text, if the time is too short to
 *  be cut into hours, minutes and seconds. */
bool readRmc(std::string_view line, GpsFields &fields, GpsTexts &texts);

/** A line with "$GPGGA,": altitude and satellites, unless they are hardly that. */
void readGga(std::string_view line, GpsFields &fields, GpsTexts &texts);

/** A line with "$PFST,FOM,": the accuracy. */
void readFom(std::string_view line, GpsTexts &texts);
