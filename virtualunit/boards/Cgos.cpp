#include "virtualunit/boards/VirtualBoard.h"
#include "virtualunit/boards/boardRecords.h"

using namespace boards;

namespace {

constinit VirtualBoard board(u"BQ77");

/** A text of two characters as one word, the first one in the high byte. */
bool readCharacterPair(const char *name, std::uint16_t &out)
{
    char16_t text[3] = {};
    if (!readText(name, text))
        return false;
    out = std::uint16_t((text[0] & 0xFF) << 8 | (text[1] & 0xFF));
    return true;
}

} // namespace

extern "C" BOARD_API std::int32_t CgosLibInitialize()
{
    return board.initialise();
}

extern "C" BOARD_API std::int32_t CgosLibUninitialize()
{
    return board.uninitialise();
}

extern "C" BOARD_API std::int32_t CgosBoardOpenByNameW(const char16_t *name, std::uint32_t *handle)
{
    return board.openByName(name, handle);
}

extern "C" BOARD_API std::int32_t CgosBoardOpen(
    std::uintptr_t, std::uint32_t number, std::uint32_t, std::uint32_t *handle)
{
    return board.open(number, handle);
}

extern "C" BOARD_API std::int32_t CgosBoardClose(std::uint32_t handle)
{
    return board.close(handle);
}

extern "C" BOARD_API std::int32_t CgosBoardGetInfoW(std::uint32_t handle, void *info)
{
    return board.getInfo<CgosBoardInfo>(handle, info, [](CgosBoardInfo &record) {
        return readText("name", record.name) && readText("subName", record.subName) &&
               readDate("manufacturingDate", record.manufacturingDate) &&
               readText("serialNumber", record.serialNumber) &&
               readCharacterPair("productRevision", record.productRevision) &&
               readNumber("biosRevision", record.systemBiosRevision) &&
               readText("partNumber", record.partNumber) && readText("ean", record.ean);
    });
}
