#include "virtualunit/boards/VirtualBoard.h"
#include "virtualunit/boards/boardRecords.h"

using namespace boards;

namespace {

constinit VirtualBoard board(u"CCR6");

} // namespace

extern "C" BOARD_API std::int32_t JidaDllInitialize()
{
    return board.initialise();
}

extern "C" BOARD_API std::int32_t JidaDllUninitialize()
{
    return board.uninitialise();
}

extern "C" BOARD_API std::int32_t JidaBoardOpenByNameW(const char16_t *name, std::uint32_t *handle)
{
    return board.openByName(name, handle);
}

extern "C" BOARD_API std::int32_t JidaBoardOpenW(
    const char16_t *, std::uint32_t number, std::uint32_t, std::uint32_t *handle)
{
    return board.open(number, handle);
}

extern "C" BOARD_API std::int32_t JidaBoardClose(std::uint32_t handle)
{
    return board.close(handle);
}

extern "C" BOARD_API std::int32_t JidaBoardGetInfoW(std::uint32_t handle, void *info)
{
    return board.getInfo<JidaBoardInfo>(handle, info, [](JidaBoardInfo &record) {
        return readText("name", record.name) &&
               readDate("manufacturingDate", record.manufacturingDate) &&
               readText("serialNumber", record.serialNumber) &&
               readNumber("hardwareRevision", record.hardwareRevision) &&
               readNumber("firmwareRevision", record.firmwareRevision);
    });
}
