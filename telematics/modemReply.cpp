#include "telematics/modemReply.h"

#include <QPlainTextEdit>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

struct State {
    const char *part; ///< of what the modem said, in any case of letters
    const char *text;
};

constexpr State pinStates[] = {
    {"READY", "PIN code status: Ok"},
    {"SIM PIN", "PIN code status: Enter PIN"},
    {"", "PIN code status: Unknown"},
};

// With the registration mode 0 in front. The first that fits decides, wherever it stands.
constexpr State networkStates[] = {
    {"0,0", "Network status: Searching"},
    {"0,1", "Network status: Ok, registered"},
    {"0,2", "Network status: Searching"},
    {"0,3", "Network status: Registration denied"},
    {"0,5", "Network status: Ok, Roaming"},
    {"", "Network status: Unknown"},
};

template <std::size_t Count>
QString stateText(const QString &reply, const State (&states)[Count])
{
    const auto *found = std::find_if(std::begin(states), std::end(states), [&](const State &state) {
        return reply.contains(QString::fromLatin1(state.part), Qt::CaseInsensitive);
    });
    return QString::fromLatin1(found->text);
}

} // namespace

void showModemReply(QPlainTextEdit *view, const char *buffer, std::size_t size)
{
    view->clear();
    bool received = false;
    for (std::size_t index = 0; index < size;) {
        const char *piece = buffer + index;
        const std::size_t length = ::strnlen(piece, size - index);
        index += std::max<std::size_t>(length, 1);
        if (length == 0)
            continue;
        received = true;
        view->insertPlainText(QString::fromUtf8(piece, int(length)));
    }
    if (!received)
        view->insertPlainText(QStringLiteral("No data received"));
}

QString pinStateText(const QString &reply)
{
    return stateText(reply, pinStates);
}

QString networkStateText(const QString &reply)
{
    return stateText(reply, networkStates);
}
