#include "tests/support/x11/XSession.h"

#include <memory>

using namespace support;

namespace {

constexpr int patience = XSession::patience;
constexpr int longPress = 2'000;  // milliseconds
constexpr int settleTime = 1'000; // milliseconds, for what must not happen

// Middles of buttons, in the window.
constexpr QPoint aboutButton(69, 205);
constexpr QPoint menuButton(395, 407);
constexpr QPoint exitButton(525, 407);
constexpr QPoint advancedButton(405, 304);
constexpr QPoint firmwarePath(270, 116);
constexpr QPoint defaultsButton(390, 321);
constexpr QPoint shutdownButton(135, 321);
constexpr QPoint ledButton(181, 205);
constexpr QPoint sectionList(300, 118); // of the About page
constexpr QPoint thirdSection(200, 254);
constexpr QPoint colourList(410, 134);
constexpr QPoint colourButton(410, 200);
constexpr QPoint programFront(384, 168);
constexpr QPoint thirdColour(410, 275); // in the open list
constexpr QPoint reportText(150, 320);

/** "Buzzer #1" for each handle that was created and not released. */
QStringList openHandles(const QStringList &journal)
{
    static const QRegularExpression created("^T\\d+ (\\w+)_create\\(\\) = (#\\d+)$"_s);
    static const QRegularExpression released("^T\\d+ (\\w+)_release\\((#\\d+)\\)$"_s);
    QStringList open;
    for (const QString &line : journal) {
        if (const auto match = created.match(line); match.hasMatch())
            open << match.captured(1) + QLatin1Char(' ') + match.captured(2);
        else if (const auto end = released.match(line); end.hasMatch())
            open.removeOne(end.captured(1) + QLatin1Char(' ') + end.captured(2));
    }
    return open;
}

} // namespace

/** The real program on a real X server, driven by the events of real keys and buttons. */
class XSessionTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<support::XServer> server;
    std::unique_ptr<support::XServer> managedServer;
    QImage plainLook; ///< of the window without any argument

    static void verifyHandlesGivenBack(const support::XSession &session)
    {
        const QStringList journal = session.journal();
        QVERIFY(journal.size() > 10);
        QCOMPARE(journal.constFirst(), "T1 Hardware_create() = #1"_s);
        QCOMPARE(openHandles(journal), QStringList());
    }

private slots:
    void initTestCase()
    {
        server = std::make_unique<support::XServer>();
        QVERIFY(server->isRunning());
        managedServer = std::make_unique<support::XServer>();
        QVERIFY(managedServer->isRunning());
        QVERIFY(managedServer->manage());
    }

    void cleanupTestCase()
    {
        managedServer.reset();
        server.reset();
    }

    /** While a slow unit answers, the strip is on the screen and the list that was chosen from
     * isn't. Nothing but the program itself paints there. */
    void waitNoticeIsOnTheScreen()
    {
        support::XSession session(*server);
        session.start();
        session.click(aboutButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.picture().pixelColor(30, 120) != Qt::black, patience);
        QTest::qWait(settleTime);
        const QImage closed = session.picture();
        session.click(sectionList);
        const QPoint inList(200, 230); // and in the text beneath
        QTRY_VERIFY_WITH_TIMEOUT(session.picture() != closed, patience);
        QTest::qWait(settleTime);
        session.vornunit({"delay"_s, "Adc_getVoltage"_s, "400"_s});
        session.click(thirdSection);
        const auto amber = [&] {
            const QColor ground = session.picture().pixelColor(310, 390); // left of the buttons
            return ground.red() > 200 && ground.green() > 120 && ground.blue() < 100;
        };
        QTRY_VERIFY_WITH_TIMEOUT(amber(), 5'000);
        const QStringList journal = session.journal();
        const auto read = journal.filter("Adc_getVoltage"_s).size();
        QVERIFY2(read < 20, qPrintable(QString::number(read))); // and 400 ms more for each
        QCOMPARE(session.picture().pixelColor(inList), QColor(Qt::white));
        QTRY_VERIFY_WITH_TIMEOUT(!amber(), patience);
        QVERIFY(!session.journal().filter("Adc_release"_s).isEmpty());
    }

    /** The Escape that closes what stands in front of a page leaves the page as it is, however long
     * the key is held; the next one leads to the menu. */
    void escapeBelongsToTheFront_data()
    {
        QTest::addColumn<QPoint>("entry");
        QTest::addColumn<QPoint>("control");
        QTest::addColumn<QString>("front"); ///< title of a window, none for a list
        QTest::addColumn<QStringList>("fault");
        QTest::addColumn<int>("held");
        const QStringList none;
        const QStringList failingShutdown{"fault"_s, "Firmware_shutDown"_s, "5"_s};
        for (const int held : {30, longPress}) {
            QTest::addRow("list, %d ms", held)
                << ledButton << colourList << QString() << none << held;
            QTest::addRow("colour dialog, %d ms", held)
                << ledButton << colourButton << "Select Color"_s << none << held;
            QTest::addRow("question, %d ms", held)
                << advancedButton << defaultsButton << "Default Settings"_s << none << held;
            QTest::addRow("error box, %d ms", held)
                << advancedButton << shutdownButton << "Vornsettings"_s << failingShutdown << held;
        }
    }

    void escapeBelongsToTheFront()
    {
        QFETCH(QPoint, entry);
        QFETCH(QPoint, control);
        QFETCH(QString, front);
        QFETCH(QStringList, fault);
        QFETCH(int, held);
        support::XSession session(*managedServer, true);
        if (!fault.isEmpty())
            session.vornunit(fault);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(entry);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        const QImage page = session.titleStrip();
        session.click(control);
        if (front.isEmpty())
            QTest::qWait(settleTime); // a list has no title to be found by
        else
            session.awaitFocus(session.windowNamed(front.toLatin1().constData()));
        session.holdEscape(held);
        QTest::qWait(settleTime);
        QVERIFY(session.isRunning());
        session.awaitFocus(session.window);
        QCOMPARE(session.titleStrip(), page);
        session.press("Escape");
        QTRY_COMPARE_WITH_TIMEOUT(session.titleStrip(), menu, patience);
        session.press("Escape");
        session.verifyEnd(0);
    }

    /** A box while the pages are built stands before a window that nobody has seen yet. */
    void escapeBeforeTheWindow_data()
    {
        QTest::addColumn<int>("held");
        QTest::newRow("short") << 30;
        QTest::newRow("long") << longPress;
    }

    void escapeBeforeTheWindow()
    {
        QFETCH(int, held);
        support::XSession session(*managedServer, true);
        session.vornunit({"fault"_s, "Power_getCanPowerStatus"_s, "5"_s, "--times"_s, "1"_s});
        session.launch();
        session.awaitFocus(session.windowNamed("Vornsettings"));
        session.holdEscape(held);
        session.awaitWindow();
        QTest::qWait(settleTime);
        QVERIFY(session.isRunning());
        session.press("Escape");
        session.verifyEnd(0);
    }

    /** The server repeats the key while it is held: one long press leads to the menu and stays
     * there. */
    void longEscapeLeadsToTheMenu()
    {
        support::XSession session(*managedServer, true);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(aboutButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        session.holdEscape(longPress);
        QTRY_COMPARE_WITH_TIMEOUT(session.titleStrip(), menu, patience);
        QTest::qWait(settleTime);
        QVERIFY(session.isRunning());
        session.press("Escape");
        session.verifyEnd(0);
    }

    void throughAboutAndBack_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("back by Menu") << false;
        QTest::newRow("back by Escape") << true;
    }

    void throughAboutAndBack()
    {
        QFETCH(bool, byKey);
        support::XSession session(*server);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(aboutButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        if (byKey)
            session.press("Escape");
        else
            session.click(menuButton);
        QTRY_COMPARE_WITH_TIMEOUT(session.titleStrip(), menu, patience);
        session.press("Escape");
        session.verifyEnd(0);
        verifyHandlesGivenBack(session);
    }

    /** The press that opens a list isn't the one that chooses in it, wherever it ends. */
    void slideIntoListChoosesNothing()
    {
        support::XSession session(*server);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(ledButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        const auto chosen = [&session] {
            return session.journal().filter("FrontLED_setStandardColor"_s).size();
        };
        session.drag(colourList, thirdColour);
        QTest::qWait(settleTime);
        QCOMPARE(chosen(), 0);
        session.click(thirdColour);
        QTRY_COMPARE_WITH_TIMEOUT(chosen(), 1, patience);
        session.click(exitButton);
        session.verifyEnd(0);
    }

    /** A text follows a finger, and an end of it that was out of sight is seen. */
    void reportFollowsFinger()
    {
        support::XSession session(*server);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(aboutButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        QTest::qWait(settleTime);
        const auto text = [&session] { return session.picture().copy(40, 160, 360, 170); };
        const QImage before = text();
        session.drag(reportText, reportText - QPoint(0, 100));
        QTRY_VERIFY_WITH_TIMEOUT(text() != before, patience);
        const QImage after = text();
        session.drag(reportText - QPoint(0, 100), reportText);
        QTRY_VERIFY_WITH_TIMEOUT(text() != after, patience);
        session.click(exitButton);
        session.verifyEnd(0);
    }

    void closes_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("fromPage");
        for (const char *way : {"Escape", "Exit", "close button"}) {
            QTest::addRow("%s on the menu", way) << QString::fromLatin1(way) << false;
            if (qstrcmp(way, "Escape") != 0)
                QTest::addRow("%s on a page", way) << QString::fromLatin1(way) << true;
        }
    }

    void closes()
    {
        QFETCH(QString, way);
        QFETCH(bool, fromPage);
        support::XSession session(*server);
        session.start();
        const QImage menu = session.titleStrip();
        if (fromPage) {
            session.click(aboutButton);
            QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        }
        if (way == "Escape"_s)
            session.press("Escape");
        else if (way == "Exit"_s)
            session.click(exitButton);
        else
            server->requestClose(session.window);
        session.verifyEnd(0);
        verifyHandlesGivenBack(session);
    }

    /** The dialog of a firmware job stands before the window: neither can be closed until the job
     * is over, and then everything goes on. */
    void closeWaitsForFirmwareJob()
    {
        QTemporaryDir folder;
        QFile image(folder.filePath("image.hex"_s));
        QVERIFY(image.open(QIODevice::WriteOnly));
        image.write(":0400000001020304F2\n:00000001FF\n");
        image.close();
        support::XSession session(*server);
        session.setUnit("Firmware.duration"_s, "1500"_s);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(advancedButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        session.click(firmwarePath);
        session.type(image.fileName());
        session.click(programFront);
        const std::uint32_t question = session.windowNamed("Update progress");
        QTRY_VERIFY_WITH_TIMEOUT(server->focus(question), patience);
        session.press("alt+y");

        const auto told = [&session](const char *state) {
            const QString line = " = 0 [%1,"_s.arg(QLatin1String(state));
            return session.journal().filter("Firmware_getUpgradeStatus"_s).filter(line).size();
        };
        QTRY_VERIFY_WITH_TIMEOUT(told("4") > 0, patience);
        const std::uint32_t progress = session.windowNamed("Update progress");
        server->requestClose(session.window);
        server->requestClose(progress);
        session.click(exitButton);
        QCOMPARE(told("6"), 0);
        QTRY_COMPARE_WITH_TIMEOUT(told("6"), 1, patience);

        std::uint32_t result = progress;
        QTRY_VERIFY_WITH_TIMEOUT(
            (result = session.windowNamed("Update progress")) != progress && server->focus(result),
            patience);
        session.press("Return");
        server->requestClose(session.window);
        session.verifyEnd(0);
        verifyHandlesGivenBack(session);
        QCOMPARE(told("6"), 1);
    }

    void hasOneSize_data()
    {
        QTest::addColumn<QString>("scale");
        QTest::addColumn<QSize>("size");
        QTest::newRow("1") << "1"_s << QSize(600, 435);
        QTest::newRow("1.5") << "1.5"_s << QSize(900, 653);
        QTest::newRow("2") << "2"_s << QSize(1200, 870);
    }

    void hasOneSize()
    {
        QFETCH(QString, scale);
        QFETCH(QSize, size);
        support::XSession session(*server);
        session.environment.insert("QT_SCALE_FACTOR"_s, scale);
        session.start();
        const auto [least, greatest] = server->sizeLimits(session.window);
        QCOMPARE(least, size);
        QCOMPARE(greatest, size);
        QCOMPARE(session.picture().size(), size);
        server->requestClose(session.window);
        session.verifyEnd(0);
    }

    /** A command line that names no other mode, and what the desktop or the user wish for the look
     * of programs, change nothing. */
    void looksTheSame_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("variable");
        QTest::addColumn<QString>("value");
        QTest::newRow("style option")
            << QStringList{"-style"_s, "windows"_s} << QString() << QString();
        QTest::newRow("style of the environment") << QStringList() << "QT_STYLE_OVERRIDE"_s
                                                  << "Windows"_s;
        QTest::newRow("report mode without a file")
            << QStringList{"--systemreport"_s} << QString() << QString();
        QTest::newRow("reset with one argument too many")
            << QStringList{"--factorydefault"_s, "now"_s} << QString() << QString();
        QTest::newRow("mode in capitals")
            << QStringList{"--FACTORYDEFAULT"_s} << QString() << QString();
    }

    void looksTheSame()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, variable);
        QFETCH(QString, value);
        if (plainLook.isNull()) {
            support::XSession session(*server);
            session.start();
            plainLook = session.picture();
            session.press("Escape");
            session.verifyEnd(0);
        }
        support::XSession session(*server);
        if (!variable.isEmpty())
            session.environment.insert(variable, value);
        session.start(arguments);
        QTRY_COMPARE_WITH_TIMEOUT(session.picture(), plainLook, patience);
        session.press("Escape");
        session.verifyEnd(0);
        for (const QString &line : session.journal())
            QVERIFY2(!line.contains("Config_set"_s), qPrintable(line));
    }
};

QTEST_GUILESS_MAIN(XSessionTest)
#include "tst_xsession.moc"
