#include "telematics/modemReply.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/require.h"

#include <QApplication>
#include <QPlainTextEdit>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace {

void haveApplication()
{
    if (QCoreApplication::instance())
        return;
    static int count = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "minimal"); // without fonts
    static const QApplication application(count, arguments);
}

bool isPlain(int character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z');
}

} // namespace

void checkModemReply(const std::uint8_t *bytes, std::size_t size)
{
    haveApplication();
    QPlainTextEdit view;
    // The sizes of the console's buffers. Each is one of its own, so that a step across its end is
    // seen; what a reply doesn't fill is zero.
    for (const std::size_t bufferSize : {128U, 256U, 512U}) {
        std::vector<char> buffer(bufferSize, '\0');
        const auto count = std::min(size, bufferSize);
        std::copy_n(bytes, count, buffer.begin());
        showModemReply(&view, buffer.data(), buffer.size());
        const QString shown = view.toPlainText();

        const bool anything = std::any_of(bytes, bytes + count, [](auto byte) { return byte; });
        REQUIRE(anything || shown == QLatin1String("No data received"));
        // Letters and digits come through whatever is around them.
        std::string sent;
        std::copy_if(bytes, bytes + count, std::back_inserter(sent), isPlain);
        std::string received;
        for (const QChar character : shown) {
            if (isPlain(character.unicode()))
                received += character.toLatin1();
        }
        REQUIRE(!anything || received == sent);

        const QString pin = pinStateText(shown);
        REQUIRE(pin.startsWith(QLatin1String("PIN code status: ")));
        REQUIRE(pin.endsWith(QLatin1String("Ok")) ==
                shown.contains(QLatin1String("READY"), Qt::CaseInsensitive));
        REQUIRE(networkStateText(shown).startsWith(QLatin1String("Network status: ")));
    }
}
