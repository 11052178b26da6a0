#include "tests/support/literals.h"

#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace support;

namespace {

constexpr int patience = 60'000; // milliseconds
const QColor ground(25, 23, 28);

struct Shots {
    int exitCode = -1;
    QByteArray errors;
    QMap<QString, QImage> pictures; ///< by name without suffix
};

Shots take(const QStringList &options)
{
    const QTemporaryDir folder;
    QProcess process;
    process.start(QStringLiteral(VORN_BIN_DIR "/vornshots"), options + QStringList{folder.path()});
    Shots shots;
    if (!process.waitForFinished(patience))
        return shots;
    shots.exitCode = process.exitCode();
    shots.errors = process.readAllStandardError();
    for (const QFileInfo &file : QDir(folder.path()).entryInfoList(QDir::Files))
        shots.pictures.insert(file.completeBaseName(), QImage(file.filePath()));
    return shots;
}

} // namespace

/** Pictures of the window, as documents and tests take them. */
class ShotsPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void refuses_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("screen") << QStringList{"--screen"_s, "640"_s};
        QTest::newRow("scale") << QStringList{"--scale"_s, "much"_s};
        QTest::newRow("state") << QStringList{"--state"_s, "asleep"_s};
        QTest::newRow("option") << QStringList{"--no"_s};
        QTest::newRow("second folder") << QStringList{"somewhere"_s};
    }

    void refuses()
    {
        QFETCH(QStringList, options);
        const Shots shots = take(options);
        QCOMPARE(shots.exitCode, 2);
        QVERIFY(shots.errors.startsWith("usage: vornshots"));
    }

    /** The window is whole on its screen, at a scale that fits. */
    void screens_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QString>("scale");
        QTest::addColumn<double>("drawn");
        QTest::newRow("640x480") << QSize(640, 480) << "1"_s << 1.0;
        QTest::newRow("800x480") << QSize(800, 480) << "1"_s << 1.0;
        QTest::newRow("1024x768") << QSize(1024, 768) << "1.5"_s << 1.5;
        QTest::newRow("1280x800, too large") << QSize(1280, 800) << "3"_s << 1.75;
        QTest::newRow("1280x800, too small") << QSize(1280, 800) << "0.5"_s << 1.0;
        QTest::newRow("480x272") << QSize(480, 272) << "1"_s << 0.0;
        QTest::newRow("320x240") << QSize(320, 240) << "1"_s << 0.0;
    }

    void screens()
    {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        QSKIP("Qt 5 has one offscreen screen alone");
#endif
        QFETCH(QSize, screen);
        QFETCH(QString, scale);
        QFETCH(double, drawn);
        const Shots shots = take({"--page"_s, "menu"_s, "--scale"_s, scale, "--screen"_s,
            QStringLiteral("%1x%2").arg(screen.width()).arg(screen.height())});
        QCOMPARE(shots.exitCode, 0);
        QCOMPARE(shots.pictures.keys(), QStringList{"menu"_s});
        const QImage menu = shots.pictures.first();
        QCOMPARE(menu.size(), screen);
        if (drawn == 0.0) { // the foot is in sight
            QCOMPARE(menu.pixelColor(5, screen.height() - 5), ground);
            QVERIFY(menu.pixelColor(screen.width() - 100, screen.height() - 30).lightness() > 60);
            return;
        }
        const QPoint corner((screen.width() - qRound(600 * drawn)) / 2,
            (screen.height() - qRound(435 * drawn)) / 2);
        const auto at = [&](int x, int y) {
            return menu.pixelColor(corner + QPoint(qRound(x * drawn), qRound(y * drawn)));
        };
        QVERIFY(at(20, 8).green() > 180);
        QVERIFY(at(580, 8).green() > 180);
        QCOMPARE(at(300, 430), ground);
        QCOMPARE(at(590, 430), ground);
        QCOMPARE(menu.pixelColor(2, 2), QColor(Qt::black));
    }

    void states_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("name");
        QTest::newRow("focus") << "focus"_s
                               << "led-focus-spinBoxPulses"_s;
        QTest::newRow("list") << "list"_s
                              << "led-list-comboBoxColor"_s;
        QTest::newRow("busy") << "busy"_s
                              << "led-busy"_s;
        QTest::newRow("box") << "box"_s
                             << "error"_s;
    }

    void states()
    {
        QFETCH(QString, state);
        QFETCH(QString, name);
        static const QImage plain = take({"--page"_s, "led"_s}).pictures.value("led"_s);
        QCOMPARE(plain.size(), QSize(600, 435));
        const Shots shots = take({"--page"_s, "led"_s, "--state"_s, state});
        QCOMPARE(shots.exitCode, 0);
        QVERIFY(shots.pictures.contains(name));
        QVERIFY(shots.pictures.value(name) != plain);
    }
};

QTEST_GUILESS_MAIN(ShotsPosixTest)
#include "tst_shots_posix.moc"
