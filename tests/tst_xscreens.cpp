#include "tests/support/x11/XSession.h"

#include <memory>

using namespace support;

namespace {

constexpr int patience = XSession::patience;
constexpr QSize wholeSize(600, 435);
constexpr int footHeight = 48;    // of a small window, as all below
constexpr int smallContent = 381; // what a finger draws along, without the foot
const QColor ground(25, 23, 28);

QString scaleVariable()
{
    return "QT_SCALE_FACTOR"_s;
}

/** Whether the picture is the window's ground all over. */
bool isGround(const QImage &picture)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) != ground)
                return false;
        }
    }
    return !picture.isNull();
}

/** Draws the content to the left and up, with a finger that was set on a menu entry. */
void draw(const XSession &session)
{
    const auto mouse = [&session](const QStringList &what) { session.server.tool(what); };
    const QString window = QString::number(session.window);
    QPoint at(293, 110);
    mouse({"mousemove"_s, "--window"_s, window, QString::number(at.x()), QString::number(at.y()),
        "mousedown"_s, "1"_s});
    for (int step = 0; step < 10; ++step) {
        at -= QPoint(29, 11);
        mouse({"mousemove"_s, "--window"_s, window, QString::number(at.x()),
            QString::number(at.y())});
        QTest::qWait(20);
    }
    mouse({"mouseup"_s, "1"_s});
}

} // namespace

/** The window on screens of every size, under window managers of every kind. */
class XScreensTest : public QObject
{
    Q_OBJECT

private slots:
    /** The window is whole, in the middle where nobody else decides, and as large as it was asked
     * to be if that fits. */
    void whole_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QString>("manager");
        QTest::addColumn<QString>("scale");
        QTest::addColumn<double>("expected");
        QTest::addColumn<QByteArray>("words");
        const QString none;
        const QString openbox = "openbox"_s;
        const QByteArray silent;
        const auto lowered = [](const char *from, const char *to) {
            return QByteArray("VornSettings: scale factor ") + from + " becomes " + to +
                   ": the window would not fit the screen\n";
        };
        const QByteArray raised = "VornSettings: scale factor 0.5 becomes 1: the window can't be "
                                  "drawn smaller than it is\n";
        QTest::newRow("640x480") << QSize(640, 480) << none << none << 1.0 << silent;
        QTest::newRow("640x480, framed") << QSize(640, 480) << openbox << none << 1.0 << silent;
        QTest::newRow("640x480, 1.05") << QSize(640, 480) << none << "1.05" << 1.05 << silent;
        QTest::newRow("640x480, 2") << QSize(640, 480) << none << "2" << 1.0 << lowered("2", "1");
        QTest::newRow("640x480, 0.5") << QSize(640, 480) << none << "0.5" << 1.0 << raised;
        QTest::newRow("800x480, framed") << QSize(800, 480) << openbox << none << 1.0 << silent;
        QTest::newRow("1024x768, 2")
            << QSize(1024, 768) << none << "2" << 1.5 << lowered("2", "1.5");
        QTest::newRow("1024x768, 2, framed")
            << QSize(1024, 768) << openbox << "2" << 1.5 << lowered("2", "1.5");
        QTest::newRow("1280x800, 1.5") << QSize(1280, 800) << none << "1.5" << 1.5 << silent;
        QTest::newRow("upright, 2")
            << QSize(768, 1024) << none << "2" << 1.25 << lowered("2", "1.25");
    }

    void whole()
    {
        QFETCH(QSize, screen);
        QFETCH(QString, manager);
        QFETCH(QString, scale);
        QFETCH(double, expected);
        QFETCH(QByteArray, words);
        XServer server(screen);
        QVERIFY(server.isRunning());
        if (!manager.isEmpty())
            QVERIFY(server.manage(manager));
        XSession session(server, !manager.isEmpty());
        session.keepErrors();
        if (!scale.isEmpty())
            session.environment.insert(scaleVariable(), scale);
        session.start();
        const QSize size(qRound(600 * expected), qRound(435 * expected));
        const QRect place = server.placeOf(session.window);
        QCOMPARE(place.size(), size);
        QVERIFY(server.screenPicture().rect().contains(place));
        const QPoint off = place.center() - server.screenPicture().rect().center();
        if (manager.isEmpty())
            QVERIFY(off.manhattanLength() <= 2);
        // All of the content, whatever it is scaled by: its foot is in the picture.
        const QImage picture = session.picture();
        const auto at = [&](int x, int y) {
            return picture.pixelColor(qRound(x * expected), qRound(y * expected));
        };
        QCOMPARE(at(595, 430), ground);
        QVERIFY(at(350, 400).lightness() > 100); // the Menu button
        session.press("Escape");
        session.verifyEnd(0);
        QCOMPARE(session.errors(), words);
    }

    /** What doesn't fit a small screen comes by a finger, which chooses nothing on its way. Menu
     * and Exit stay where they are. */
    void small_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QString>("manager");
        for (const char *manager : {"", "openbox", "matchbox-window-manager"}) {
            QTest::addRow("480x272 %s", manager) << QSize(480, 272) << QString::fromLatin1(manager);
            QTest::addRow("320x240 %s", manager) << QSize(320, 240) << QString::fromLatin1(manager);
        }
    }

    void small()
    {
        QFETCH(QSize, screen);
        QFETCH(QString, manager);
        XServer server(screen);
        QVERIFY(server.isRunning());
        if (!manager.isEmpty())
            QVERIFY(server.manage(manager));
        XSession session(server, !manager.isEmpty());
        server.tool({"mousemove"_s, "0"_s, "0"_s});
        session.start();
        const auto fits = [&] {
            return server.screenPicture().rect().contains(server.placeOf(session.window));
        };
        QTRY_VERIFY_WITH_TIMEOUT(fits(), patience);
        const QSize size = server.placeOf(session.window).size();
        QVERIFY(size.width() > screen.width() - 20 && size.height() > screen.height() - 40);
        const QImage menu = session.titleStrip(); // the focus may still be on its way

        draw(session);
        draw(session);
        const QPoint end(
            size.width() - wholeSize.width(), size.height() - footHeight - smallContent);
        const auto telematicsCalls = [&session] {
            return session.journal().filter("Telematics_getGPRSPowerStatus"_s).size();
        };
        QCOMPARE(telematicsCalls(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        const QPoint telematicsButton(517, 304);
        session.click(telematicsButton + end);
        QTRY_VERIFY_WITH_TIMEOUT(telematicsCalls() > 0, patience);

        const auto foot = [&size](int fromRight) {
            return QPoint(size.width() - fromRight, size.height() - footHeight / 2);
        };
        session.click(foot(205));
        session.server.tool({"mousemove"_s, "0"_s, "0"_s});
        QTRY_COMPARE_WITH_TIMEOUT(session.titleStrip(), menu, patience);
        session.click(foot(75));
        session.verifyEnd(0);
    }

    /** A window manager that stretches every window gets the content in the middle, and the
     * window's ground around it. */
    void stretched_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QString>("scale");
        QTest::newRow("800x480") << QSize(800, 480) << "1"_s;
        QTest::newRow("1024x768") << QSize(1024, 768) << "1"_s;
        QTest::newRow("1280x1024, 2") << QSize(1280, 1024) << "2"_s;
    }

    void stretched()
    {
        QFETCH(QSize, screen);
        QFETCH(QString, scale);
        XServer server(screen);
        QVERIFY(server.isRunning());
        QVERIFY(server.manage("matchbox-window-manager"_s));
        XSession session(server, true);
        session.environment.insert(scaleVariable(), scale);
        session.launch();
        session.window = session.windowNamed("Settings");
        QVERIFY(session.window != 0);
        const QSize content = wholeSize * scale.toInt();
        const auto rim = [&] {
            const QImage all = session.picture();
            return QRect((all.width() - content.width()) / 2, (all.height() - content.height()) / 2,
                content.width(), content.height());
        };
        const auto amber = [&] {
            const QColor strip = session.picture().pixelColor(rim().topLeft() + QPoint(100, 8));
            return strip.red() > 200 && strip.green() > 150;
        };
        QTRY_VERIFY_WITH_TIMEOUT(amber(), patience);
        QVERIFY(session.picture().width() > screen.width() - 20);
        const QImage all = session.picture();
        QVERIFY(isGround(all.copy(0, 0, rim().left(), all.height())));
        QVERIFY(isGround(all.copy(rim().right() + 1, 0, all.width(), all.height())
                             .copy(0, 0, rim().left() - 1, all.height())));
        session.click(rim().topLeft() + QPoint(525, 407) * scale.toInt());
        session.verifyEnd(0);
    }
};

QTEST_GUILESS_MAIN(XScreensTest)
#include "tst_xscreens.moc"
