#include "tests/support/WindowSweep.h"

#include "frame/window/VornSettings.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/WindowPresses.h"

#include <QPushButton>

void WindowSweep::init()
{
    DeviceTest::init();
    // No serial lines: a dialogue with a modem would take seconds.
    support::useNoOtherLines();
    bios.reset(); // one at a time
    bios = std::make_unique<support::BiosData>();
    dialogs.setDefaultAnswer(support::denyOrClose);
}

bool WindowSweep::isWorthPressing(const QAbstractButton *)
{
    return true;
}

void WindowSweep::sweepWindow()
{
    const support::SkippedPauses pauses;
    {
        VornSettings window(nullptr, Qt::WindowFlags());
        window.show();
        support::pressWindow(
            window, [this](const QAbstractButton *button) { return isWorthPressing(button); });
        QTest::mouseClick(
            window.findChild<QPushButton *>(QStringLiteral("buttonExit")), Qt::LeftButton);
        QVERIFY(!window.isVisible());
    }
    for (const support::Dialog &dialog : dialogs.take())
        QVERIFY2(support::isForeseen(dialog),
            qPrintable(dialog.className + QLatin1Char(' ') + dialog.text));
}
