#pragma once

#include <cstddef>
#include <cstdint>

/** The records that the two vendors' libraries fill. Texts are UTF-16 and end with a zero. */
namespace boards {

/** The platform's date-and-time record. */
struct BoardDate {
    std::uint16_t year;
    std::uint16_t month; ///< from 1
    std::uint16_t dayOfWeek;
    std::uint16_t day; ///< from 1
    std::uint16_t hour;
    std::uint16_t minute;
    std::uint16_t second;
    std::uint16_t millisecond;
};

/** What CgosBoardGetInfoW fills. */
struct CgosBoardInfo {
    std::uint32_t size; ///< set by the caller to the record's size
    std::uint32_t reserved1[9];
    char16_t name[16];
    char16_t subName[32];
    BoardDate manufacturingDate;
    BoardDate lastRepairDate;
    char16_t serialNumber[16];
    std::uint16_t productRevision; ///< two characters, the first one in the high byte
    std::uint16_t systemBiosRevision;
    std::uint16_t reserved2[8];
    char16_t partNumber[20];
    char16_t ean[22];
};

/** What JidaBoardGetInfoW fills. */
struct JidaBoardInfo {
    std::uint32_t size; ///< set by the caller to the record's size
    std::uint32_t reserved1[9];
    char16_t name[16];
    std::uint32_t reserved2[16];
    BoardDate manufacturingDate;
    BoardDate lastRepairDate;
    char16_t serialNumber[16];
    std::uint16_t hardwareRevision;
    std::uint16_t firmwareRevision;
    std::uint32_t reserved3[65];
};

static_assert(sizeof(CgosBoardInfo) == 304 && offsetof(CgosBoardInfo, name) == 40);
static_assert(offsetof(CgosBoardInfo, subName) == 72);
static_assert(offsetof(CgosBoardInfo, manufacturingDate) == 136);
static_assert(offsetof(CgosBoardInfo, serialNumber) == 168);
static_assert(offsetof(CgosBoardInfo, productRevision) == 200);
static_assert(offsetof(CgosBoardInfo, partNumber) == 220 && offsetof(CgosBoardInfo, ean) == 260);
static_assert(sizeof(JidaBoardInfo) == 464 && offsetof(JidaBoardInfo, name) == 40);
static_assert(offsetof(JidaBoardInfo, manufacturingDate) == 136);
static_assert(offsetof(JidaBoardInfo, serialNumber) == 168);
static_assert(offsetof(JidaBoardInfo, hardwareRevision) == 200);

} // namespace boards
