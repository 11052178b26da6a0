#include "touchcalibrator/CalibrationWindow.h"

#include "tests/support/DeviceTest.h"

#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QSignalSpy>
#include <QTranslator>

using namespace support;

namespace {

/** Notes which of the window's texts are asked for, which is when they are painted. */
struct AskedTexts : QTranslator {
    AskedTexts() { QCoreApplication::installTranslator(this); }
    ~AskedTexts() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        if (QByteArray(context) == "CalibrationWindow")
            texts << QString::fromUtf8(text);
        return {};
    }

    mutable QStringList texts;
};

} // namespace

/** The stand-in for the calibration tool: its window, and its program with its arguments. */
class TouchCalibratorTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void completes_data()
    {
        QTest::addColumn<bool>("thirteen");
        QTest::addColumn<int>("count");
        QTest::newRow("5 points") << false << 5;
        QTest::newRow("13 points") << true << 13;
    }

    void completes()
    {
        QFETCH(bool, thirteen);
        QFETCH(int, count);
        CalibrationWindow window(
            thirteen ? CalibrationWindow::Points::Thirteen : CalibrationWindow::Points::Five);
        QSignalSpy ended(&window, &CalibrationWindow::ended);
        window.resize(800, 480);
        window.show();
        const QList<QPointF> targets = window.targets();
        QCOMPARE(int(targets.size()), count);
        QSet<QString> places;
        for (const QPointF &target : targets) {
            places << "%1 %2"_s.arg(target.x()).arg(target.y());
            QVERIFY(QRectF(window.rect()).adjusted(40, 40, -40, -40).contains(target));
        }
        QCOMPARE(int(places.size()), count);
        for (int hit = 0; hit < count; ++hit) {
            QCOMPARE(window.hits(), hit);
            QVERIFY(!window.isComplete());
            const QImage before = window.grab().toImage();
            tap(window, targets[hit] + QPointF(3, 4));
            QVERIFY(window.grab().toImage() != before);
        }
        QVERIFY(window.isComplete());
        QVERIFY(qAbs(window.meanDeviation() - 5) < 1);
        QTRY_VERIFY(!window.isVisible());
        QCOMPARE(ended.count(), 1);
        QCOMPARE(ended.constFirst().constFirst().toBool(), true);
    }

    void ignoresTapsFarOff()
    {
        CalibrationWindow window(CalibrationWindow::Points::Five);
        window.resize(800, 480);
        window.show();
        tap(window, QPointF(400, 100));
        tap(window, window.targets().at(1));
        QCOMPARE(window.hits(), 0);
        QCOMPARE(window.meanDeviation(), 0.0);
        tap(window, window.targets().at(0));
        QCOMPARE(window.hits(), 1);
    }

    void tellsWhatToDo()
    {
        const AskedTexts asked;
        CalibrationWindow window(CalibrationWindow::Points::Five);
        window.resize(800, 480);
        window.show();
        const auto painted = [&] {
            asked.texts.clear();
            window.grab();
            return asked.texts;
        };
        const auto number = "Target %1 of %2. Escape cancels"_s;
        QCOMPARE(painted(), (QStringList{"Touch the centre of the amber target"_s, number}));
        tap(window, window.targets().at(1));
        QCOMPARE(painted(),
            (QStringList{"Too far off. Touch the centre of the amber target"_s, number}));
        for (const QPointF &target : window.targets())
            tap(window, target);
        QCOMPARE(painted(), QStringList("Calibration complete. Mean deviation: %1 pixels"_s));
        tap(window, window.targets().at(0));
        QVERIFY(window.isComplete());
    }

    /** The target to be touched is the only amber one, those behind it have a tick instead of a
     * cross. */
    void showsTheNextTarget()
    {
        CalibrationWindow window(CalibrationWindow::Points::Five);
        window.resize(800, 480);
        window.show();
        tap(window, window.targets().at(0));
        const QImage shown = window.grab().toImage();
        const auto redOver = [&](int target) {
            const QColor colour = shown.pixelColor(window.targets().at(target).toPoint());
            return colour.red() - colour.blue();
        };
        QVERIFY(redOver(0) < 60);
        QVERIFY(redOver(1) > 100);
        QVERIFY(redOver(2) < 60);
    }

    void escapeGivesUp()
    {
        CalibrationWindow window(CalibrationWindow::Points::Five);
        QSignalSpy ended(&window, &CalibrationWindow::ended);
        window.resize(800, 480);
        window.show();
        tap(window, window.targets().at(0));
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!window.isVisible());
        QCOMPARE(ended.count(), 1);
        QCOMPARE(ended.constFirst().constFirst().toBool(), false);
    }

    /** A minute without a tap, which is made a moment here. */
    void givesUpWhenNobodyTouches()
    {
        CalibrationWindow window(CalibrationWindow::Points::Five);
        QSignalSpy ended(&window, &CalibrationWindow::ended);
        window.resize(800, 480);
        window.show();
        auto *patience = window.findChild<QTimer *>();
        QVERIFY(patience->isActive());
        QCOMPARE(patience->interval(), 60'000);
        tap(window, window.targets().at(0));
        QVERIFY(patience->isActive());
        QCOMPARE(patience->interval(), 60'000);
        patience->start(0);
        QTRY_VERIFY(!window.isVisible());
        QCOMPARE(ended.count(), 1);
        QCOMPARE(ended.constFirst().constFirst().toBool(), false);
    }

    void programTakesArguments_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("runs");
        QTest::newRow("5 points") << QStringList(QString()) << true;
        QTest::newRow("13 points") << QStringList("--13p"_s) << true;
        QTest::newRow("none") << QStringList() << true;
        QTest::newRow("unknown") << QStringList("--5p"_s) << false;
        QTest::newRow("too many") << QStringList({QString(), "--13p"_s}) << false;
    }

    void programTakesArguments()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, runs);
        QProcess program;
        program.start(QStringLiteral(VORN_BIN_DIR "/TouchCalibrator.exe"), arguments);
        QVERIFY(program.waitForStarted());
        if (runs) {
            QVERIFY(!program.waitForFinished(300));
            program.kill();
            QVERIFY(program.waitForFinished(60'000));
            return;
        }
        QVERIFY(program.waitForFinished(60'000));
        QCOMPARE(program.exitCode(), 2);
        QVERIFY(program.readAllStandardError().trimmed().endsWith(
            "usage: TouchCalibrator.exe [--13p]"));
    }

private:
    static void tap(CalibrationWindow &window, QPointF place)
    {
        QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, place.toPoint());
    }
};

VORN_TEST_MAIN(TouchCalibratorTest)
#include "tst_touchcalibrator.moc"
