#include "frame/reportError.h"
#include "platform/platform.h"
#include "tests/support/DeviceTest.h"

#include <QDateTime>
#include <QElapsedTimer>

using namespace support;

class PlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void pause_lastsItsTime()
    {
        QElapsedTimer timer;
        timer.start();
        platform::pause(100);
        const qint64 elapsed = timer.elapsed();
        QVERIFY2(elapsed >= 99 && elapsed < 5000, qPrintable(QString::number(elapsed)));
    }

    void timeStampLine()
    {
        const QDateTime noon(QDate(2012, 1, 1), QTime(12, 34, 56));
        QCOMPARE(QByteArray::fromStdString(platform::timeStampLine(noon.toSecsSinceEpoch())),
            QByteArray("Sun Jan  1 12:34:56 2012\n"));
        for (const qint64 never :
            {std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::min()})
            QCOMPARE(QByteArray::fromStdString(platform::timeStampLine(never)), QByteArray("\n"));
    }

    void library_thatIsMissing()
    {
        const platform::DynamicLibrary library("nobody.dll");
        QVERIFY(!library.isLoaded());
        QVERIFY(!library.procedure("anything"));
    }

    void library_thatIsThere()
    {
        // The device library itself is found as a board library is: in its own folder.
        const platform::DynamicLibrary library("VornAux2.dll");
        QVERIFY(library.isLoaded());
        QVERIFY(library.procedure("deviceErrorText"));
        QVERIFY(!library.procedure("no such procedure"));
    }

    void reportError_isABoxWithoutParent()
    {
        for (const int code : {1, 5, 18, 20, -1}) {
            reportError(code, "set %1 thing");
            const auto boxes = dialogs.take();
            QCOMPARE(boxes.size(), 1);
            QCOMPARE(boxes[0].title, latin1("Vornsettings"));
            QCOMPARE(boxes[0].text, "Error(%1) in "_s.arg(code) + latin1("set %1 thing: ") +
                                        latin1(deviceErrorText(code)));
            QCOMPARE(boxes[0].icon, QMessageBox::Critical);
            QCOMPARE(boxes[0].buttons, QStringList{latin1("OK")});
            QVERIFY(!boxes[0].parent);
        }
    }

    void reportError_passesOverWhatTheUnitLacks()
    {
        reportError(DEVICE_OK, "setThing");
        reportError(DEVICE_NOT_SUPPORTED, "setThing");
        QVERIFY(dialogs.take().isEmpty());
    }

private:
    Dialogs dialogs;
};

VORN_TEST_MAIN(PlatformTest)
#include "tst_platform.moc"
