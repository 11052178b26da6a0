#include "report/BoardType.h"

#include "platform/platform.h"

#include <string_view>

namespace {

struct ProductWord {
    std::u16string_view word;
    BoardType type;
};

/** Looked for anywhere in the product name; the first that is there decides. */
constexpr ProductWord productWords[] = {
    {u"ChiefRiver", BOARD_JIDA_BY_NAME},
    {u"TS77", BOARD_CGOS_BY_NAME},
    {u"Aptio CRB", BOARD_CGOS},
    {u"TCA3", BOARD_CGOS},
};

BoardType typeOf(const std::u16string &product)
{
    if (product == u"COMe-bIP6") // the one name that must be the whole value
        return BOARD_JIDA_BY_NAME;
    for (const ProductWord &row : productWords) {
        if (product.find(row.word) != std::u16string::npos)
            return row.type;
    }
    return BOARD_UNRECOGNISED;
}

} // namespace

bool readBoardType(BoardType &type)
{
    const auto product = platform::biosText(platform::BiosValue::BaseBoardProduct);
    if (!product)
        return false;
    type = typeOf(*product);
    return true;
}
