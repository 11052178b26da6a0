#include "tests/support/ViewTest.h"

#include "frame/window/graphicalMode.h"
#include "tests/support/PseudoTerminal.h"

using namespace support;

void ViewTest::open(View view)
{
    // Without a battery no thread outlives its window.
    setUnit("Battery.available"_s, QString::number(view.index == powerTab));
    window = std::make_unique<VornSettings>();
    window->show();
    page = openView(*window, view);
    dialogs.take();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    calls();
}

void ViewTest::openRow()
{
    QFETCH(int, index);
    QFETCH(int, tab);
    open({index, tab});
}

void ViewTest::openEmpty()
{
    setUnit("Battery.available"_s, "0"_s);
    window = std::make_unique<VornSettings>();
    page = new tabDlg;
    window->addTab(page, versionTab);
    window->show();
    window->showTab(versionTab);
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void ViewTest::initTestCase()
{
    setApplicationLook();
}

void ViewTest::init()
{
    DeviceTest::init();
    useNoOtherLines();
}

void ViewTest::cleanup()
{
    window.reset();
    DeviceTest::cleanup();
}
