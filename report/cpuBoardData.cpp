#include "platform/platform.h"
#include "report/BoardType.h"
#include "report/sections.h"

#include <array>
#include <cstring>
#include <span>

namespace {

/** A board as the vendors' libraries know it. */
using Board = std::uint32_t;

// The vendors' procedures; every result but 0 is success.
using Initialise = std::int32_t();
using Uninitialise = std::int32_t();
using OpenByName = std::int32_t(const char16_t *name, Board *board);
using Open = std::int32_t(
    const char16_t *boardClass, std::uint32_t number, std::uint32_t flags, Board *board);
using GetInfo = std::int32_t(Board board, void *record);

enum Role { INITIALISE, UNINITIALISE, OPEN_BY_NAME, OPEN, CLOSE, GET_INFO, ROLE_COUNT };

struct ProcedureRow {
    Role role;
    const char *name;
    bool required;
};

constexpr ProcedureRow jidaProcedures[] = {
    {INITIALISE, "JidaDllInitialize", true},
    {UNINITIALISE, "JidaDllUninitialize", true},
    {OPEN_BY_NAME, "JidaBoardOpenByNameW", true},
    {OPEN, "JidaBoardOpenW", true},
    {CLOSE, "JidaBoardClose", true}, // must be there, though the board is never closed
    {GET_INFO, "JidaBoardGetInfoW", true},
};

constexpr ProcedureRow cgosProcedures[] = {
    {INITIALISE, "CgosLibInitialize", true}, {UNINITIALISE, "CgosLibUninitialize", true},
    {OPEN_BY_NAME, "CgosBoardOpenByNameW", true}, {CLOSE, "CgosBoardClose", true},
    {GET_INFO, "CgosBoardGetInfoW", true},
    {OPEN, "CgosBoardOpen", false}, // without it boards can only be opened by name
};

/** The procedures of one loaded library by role. They live as long as the library does: nothing
 *  keeps the addresses of a library that was unloaded. */
class Procedures
{
public:
    /** @return false if one that is required is missing */
    bool lookUp(const platform::DynamicLibrary &library, std::span<const ProcedureRow> rows)
    {
        bool complete = true;
        for (const ProcedureRow &row : rows) {
            procedures[row.role] = library.procedure(row.name);
            complete = complete && (procedures[row.role] || !row.required);
        }
        return complete;
    }

    /** Calls a procedure; one that is missing fails. */
    template <typename Function, typename... Arguments>
    bool call(Role role, Arguments... arguments) const
    {
        auto *function = reinterpret_cast<Function *>(procedures[role]);
        return function && function(arguments...) != 0;
    }

private:
    std::array<platform::DynamicLibrary::Procedure, ROLE_COUNT> procedures{};
};

/** A record of the vendors' libraries: bytes with fields at fixed offsets, the size in front. */
template <std::uint32_t Bytes>
class Record
{
public:
    Record()
    {
        const std::uint32_t size = Bytes;
        std::memcpy(bytes.data(), &size, sizeof size);
    }

    void *data() { return bytes.data(); }

    std::uint16_t word(std::size_t offset) const
    {
        std::uint16_t value = 0;
        std::memcpy(&value, bytes.data() + offset, sizeof value);
        return value;
    }

    /** A UTF-16 text up to its zero, or to the record's end if it has none. */
    QString text(std::size_t offset) const
    {
        QString text;
        for (; offset + sizeof(std::uint16_t) <= Bytes && word(offset) != 0; offset += 2)
            text += QChar(word(offset));
        return text;
    }

private:
    alignas(std::uint64_t) std::array<unsigned char, Bytes> bytes{};
};

QString line(const char *name, const QString &value)
{
    return QString::fromLatin1(name) + QStringLiteral(": ") + value + QLatin1Char('\n');
}

/** A date in the layout of a system time; the day of the week, at 140, is passed over. */
template <std::uint32_t Bytes>
QString dateLine(const Record<Bytes> &record)
{
    return QStringLiteral("Manufacturing Date: %1.%2.%3\n")
        .arg(record.word(136))
        .arg(record.word(138))
        .arg(record.word(142));
}

/** Two characters in one word, the first in its high byte. */
QString revisionText(std::uint16_t word)
{
    QString text(QChar(std::uint16_t(word >> 8)));
    text += QLatin1Char('.');
    text += QChar(std::uint16_t(word & 0xFF));
    return text;
}

QString jidaLines(const Procedures &procedures, Board board)
{
    Record<464> record;
    if (!procedures.call<GetInfo>(GET_INFO, board, record.data()))
        return {};
    QString text = line("Board name", record.text(40));
    text += dateLine(record);
    text += line("Serial Number", record.text(168));
    text += line("Hardware Revision", QString::number(record.word(200)));
    text += line("Firmware Revision", QString::number(record.word(202)));
    return text;
}

QString cgosLines(const Procedures &procedures, Board board)
{
    Record<304> record;
    if (!procedures.call<GetInfo>(GET_INFO, board, record.data()))
        return {};
    QString text = line("Board name", record.text(40));
    text += line("Board sub name", record.text(72));
    text += dateLine(record);
    text += line("Serial Number", record.text(168));
    text += line("Part Number", record.text(220));
    text += line("EAN", record.text(260));
    text += line("Product Revision", revisionText(record.word(200)));
    text += line("System BIOS Revision", QString::number(record.word(202)));
    return text;
}

struct Vendor {
    const char *library;
    const char *missingMessage; ///< null: a missing library is passed over in silence
    std::span<const ProcedureRow> procedures;
    QString (*infoLines)(const Procedures &, Board);
};

constexpr Vendor jida{"jida.dll", "failed to LoadLibrary(\"jida.dll\")", jidaProcedures, jidaLines};
constexpr Vendor cgos{"Cgos.dll", nullptr, cgosProcedures, cgosLines};

struct BoardRow {
    BoardType type;
    const Vendor *vendor;
    const char16_t *name; ///< null: the vendor's first board is opened
};

constexpr BoardRow boards[] = {
    {BOARD_UNRECOGNISED, &jida, nullptr},
    {BOARD_JIDA_BY_NAME, &jida, u"CCR6"},
    {BOARD_CGOS_BY_NAME, &cgos, u"BQ77"},
    {BOARD_CGOS, &cgos, nullptr},
};

const BoardRow &presentBoard()
{
    BoardType type = BOARD_UNRECOGNISED;
    readBoardType(type); // no readable name: not recognised
    for (const BoardRow &row : boards) {
        if (row.type == type)
            return row;
    }
    return boards[0];
}

bool openBoard(const Procedures &procedures, const BoardRow &row, Board &board)
{
    if (row.name)
        return procedures.call<OpenByName>(OPEN_BY_NAME, row.name, &board);
    return procedures.call<Open>(OPEN, nullptr, 0U, 0U, &board);
}

QString biosLine()
{
    const auto version = platform::biosText(platform::BiosValue::SystemBiosVersion);
    if (!version)
        return {};
    return QStringLiteral("\nBIOS version: ") + QString::fromStdU16String(*version) +
           QLatin1Char('\n');
}

} // namespace

QString cpuBoardDataText()
{
    const BoardRow &row = presentBoard();
    const platform::DynamicLibrary library(row.vendor->library);
    if (!library.isLoaded()) {
        if (row.vendor->missingMessage)
            platform::showBlockingMessage(
                QStringLiteral("error"), QString::fromLatin1(row.vendor->missingMessage));
        return {};
    }
    Procedures procedures;
    if (!procedures.lookUp(library, row.vendor->procedures))
        return {};

    QString text;
    if (procedures.call<Initialise>(INITIALISE)) {
        Board board = 0;
        if (!openBoard(procedures, row, board)) {
            procedures.call<Uninitialise>(UNINITIALISE);
            return {};
        }
        text += row.vendor->infoLines(procedures, board);
    }
    text += biosLine();
    procedures.call<Uninitialise>(UNINITIALISE);
    return text;
}
