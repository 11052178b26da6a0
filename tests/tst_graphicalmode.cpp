#include "frame/window/graphicalMode.h"

#include "frame/window/VornSettings.h"
#include "frame/window/startOnDisplay.h"
#include "frame/window/tabMenuDlg.h"
#include "tests/support/unit.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QWindow>

#include <functional>

using namespace support;

namespace {

std::function<void(VornSettings *)> visit; ///< called once the event loop runs
bool closeFirstBox = false;                ///< one that opens while the pages are built
QStringList releasedBeforeApplication; ///< lines of the journal when the application object goes

QStringList journal()
{
    QStringList lines;
    for (const auto &call : virtualunit::takeJournal())
        lines << text(call.text());
    return lines;
}

/** The window, if it is the only visible one. */
VornSettings *onlyWindow()
{
    QWidgetList visible;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible())
            visible << widget;
    }
    return visible.size() == 1 ? qobject_cast<VornSettings *>(visible.constFirst()) : nullptr;
}

void whenApplicationStarts()
{
    qAddPostRoutine([] { releasedBeforeApplication = journal(); });
    QTimer::singleShot(0, qApp, [] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            closeFirstBox = false;
            QTimer::singleShot(0, qApp, [] { visit(onlyWindow()); });
            return box->accept();
        }
        visit(onlyWindow());
    });
}
Q_COREAPP_STARTUP_FUNCTION(whenApplicationStarts)

} // namespace

/** The whole graphical mode, from its application object to its exit value. */
class GraphicalModeTest : public QObject
{
    Q_OBJECT

private:
    static int run(const std::function<void(VornSettings *)> &look)
    {
        char name[] = "VornSettings";
        char *argv[] = {name, nullptr};
        int argc = 1;
        visit = look;
        releasedBeforeApplication.clear();
        return runGraphicalMode(argc, argv);
    }

private slots:
    /** Without a battery no thread outlives its window. */
    void init()
    {
        freshUnit();
        put("Battery.available", "0");
        virtualunit::startJournal();
    }

    /** A title bar with a system menu and a close button, no other buttons, one size. */
    void window()
    {
        bool seen = false;
        const int result = run([&seen](VornSettings *window) {
            seen = window != nullptr;
            if (!seen)
                return QCoreApplication::quit();
            const Qt::WindowFlags hints = Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                          Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                                          Qt::MSWindowsFixedSizeDialogHint;
            QWidget like;
            like.setWindowFlags(hints);
            const auto flags = window->windowFlags();
            const auto handleFlags = window->windowHandle()->flags();
            const auto state = window->windowState();
            const bool hasParent = window->parentWidget() != nullptr;
            const QSize size = window->size();
            const bool onMenu = window->findChild<tabMenuDlg *>()->isVisible();
            window->close();
            QCOMPARE(flags, like.windowFlags());
            QCOMPARE(flags, hints | Qt::Window);
            QCOMPARE(handleFlags, flags);
            QCOMPARE(state, Qt::WindowNoState);
            QVERIFY(!hasParent);
            QCOMPARE(size, QSize(600, 435));
            QVERIFY(onMenu);
        });
        QVERIFY(seen);
        QCOMPARE(result, 0);
    }

    void scale_data()
    {
        QTest::addColumn<double>("asked");
        QTest::addColumn<double>("room");
        QTest::addColumn<double>("expected");
        QTest::newRow("as asked") << 1.3 << 2.0 << 1.3;
        QTest::newRow("just fits") << 1.3 << 1.3 << 1.3;
        QTest::newRow("lowered") << 2.0 << 1.99 << 1.75;
        QTest::newRow("lowered to a whole") << 3.0 << 2.0 << 2.0;
        QTest::newRow("no room at all") << 2.0 << 0.5 << 1.0;
        QTest::newRow("small screen") << 1.0 << 0.5 << 1.0;
        QTest::newRow("too small") << 0.5 << 2.0 << 1.0;
    }

    void scale()
    {
        QFETCH(double, asked);
        QFETCH(double, room);
        QFETCH(double, expected);
        QCOMPARE(scaleThatFits(asked, room), expected);
    }

    /** A box makes the window system know the window that its page is in. */
    void windowBehindABox()
    {
        QVERIFY(virtualunit::setFault("Power_getCanPowerStatus", 5, 1).empty());
        bool seen = false;
        closeFirstBox = true;
        run([&seen](VornSettings *window) {
            seen = window != nullptr;
            if (!seen)
                return QCoreApplication::quit();
            const auto flags = window->windowFlags();
            const auto handleFlags = window->windowHandle()->flags();
            window->close();
            QVERIFY(flags & Qt::CustomizeWindowHint);
            QCOMPARE(handleFlags, flags);
        });
        QVERIFY(seen);
        QVERIFY(!closeFirstBox);
    }

    void givesTheLoopsResult()
    {
        QCOMPARE(run([](VornSettings *) { QCoreApplication::exit(42); }), 42);
    }

    /** The window and its pages go before the application object. */
    void endsInOrder()
    {
        run([](VornSettings *window) {
            journal();
            window->close();
        });
        QCOMPARE(releasedBeforeApplication.value(0), "T1 Hardware_release(#1)"_s);
        QVERIFY(releasedBeforeApplication.size() > 10);
        QCOMPARE(journal(), QStringList());
    }
};

QTEST_APPLESS_MAIN(GraphicalModeTest)
#include "tst_graphicalmode.moc"
