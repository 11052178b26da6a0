#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/**
 * The lines of the system report as data: where each stands, what it is called, how its value is
 * written, and which value and operation of a unit it tells. The reader, the writer, the comparison
 * and the making of units all read this one table. Texts are Latin-1.
 */
namespace reports {

/** How a line's value stands behind its label. */
enum class Shape {
    Text,     ///< any text and one blank behind it
    Number,   ///< a number and one blank behind it
    Measure,  ///< a number, a blank and the unit
    Minutes,  ///< "1500 min (1 days, 1h, 0min)" and one blank behind it
    Count,    ///< a number or a text; may be "N/A"
    Plain,    ///< any text, or a number where it is one
    Tight,    ///< a number and the unit right behind it
    Sentence, ///< the whole line is one of some sentences
    Failure,  ///< stands there only when something can't be read
};

/** A value of the unit and what the report calls it. */
struct Word {
    std::int32_t value;
    std::string_view text;
};

struct Item {
    std::string_view section;
    std::string_view group;
    std::string_view name;
    Shape shape = Shape::Plain;
    std::string_view unit{};            ///< as it stands in the line
    std::string_view property{};        ///< the unit's value, as vornunit names it; may be none
    std::string_view operation{};       ///< whose failure the line tells; may be none
    std::span<const Word> words{};      ///< the texts that the value may have, if they are fixed
    std::string_view label{};           ///< what stands before the value, if not the name and ": "
    std::string_view failureLabel = {}; ///< what stands before the failure, if not the label

    /** Whether the line starts with this label. @param rest what stands behind it */
    bool labels(std::string_view line, std::string_view &rest) const;
    bool labelsFailure(std::string_view line, std::string_view &rest) const;
};

/** The item's unit without the blanks before it. */
std::string_view unitOf(const Item &item);

/** All rows, in the report's order: those of one group, and those of one section, lie together. */
std::span<const Item> items();

/** The row of that name, null if there is none. */
const Item *findItem(std::string_view section, std::string_view group, std::string_view name);

/** A line that opens a group. */
struct Heading {
    std::string_view line;
    std::string_view section;
    std::string_view group;
};
std::span<const Heading> headings();

/** Titles of the sections in the report's order, the end's banner last. */
std::span<const std::string_view> sections();

inline constexpr std::string_view softwareSection = "SW Versions";
inline constexpr std::string_view identitySection = "EEPROM data";
inline constexpr std::string_view historySection = "Diagnostic data";
inline constexpr std::string_view storageSection = "SMART data";
inline constexpr std::string_view railSection = "ADC data";
inline constexpr std::string_view boardSection = "CPU board data";
inline constexpr std::string_view settingsSection = "Settings";
inline constexpr std::string_view logSection = "Log Files";
inline constexpr std::string_view endSection = "End of report";

inline constexpr std::string_view firstStorage = "First storage device";
inline constexpr std::string_view secondStorage = "Second storage device";

inline constexpr std::string_view datePrefix = "System report generated on: ";
inline constexpr std::string_view bannerEdge = "------------------";
inline constexpr std::string_view storageRule =
    "---------------------------------------------------------";
inline constexpr std::string_view noLifetime = "Estimated remaining lifetime is not available";
inline constexpr std::string_view initialTime = "Device was initially timestamped on";
inline constexpr std::string_view minimumTemp = "Battery minimum temp";
inline constexpr std::string_view maximumTemp = "Battery maximum temp";
/** Between the two temperatures that share a line. */
inline constexpr std::string_view betweenTemps = ", maximum temp: ";
inline constexpr std::string_view logPrefix = "File:";
inline constexpr std::string_view logNames[] = {"HardwareErrorLog.log", "VornAuxService.log"};

} // namespace reports
