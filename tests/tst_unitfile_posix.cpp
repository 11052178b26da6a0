#include "frame/DeviceHandle.h"
#include "frame/VornAux2.h"
#include "tests/support/literals.h"
#include "virtualunit/VirtualUnit.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace support;

/** The unit's file, taken away and replaced while it is open. */
class UnitFileTest : public QObject
{
    Q_OBJECT

private slots:
    void recoversWhenTheFileIsBack()
    {
        const QTemporaryDir folder;
        const auto path = folder.filePath("unit"_s);
        const auto other = folder.filePath("other"_s);
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        QCOMPARE(virtualunit::open(path.toStdString()), std::string());
        QCOMPARE(Buzzer_setVolume(buzzer, 5), 0);
        QCOMPARE(virtualunit::open(other.toStdString()), std::string());
        QCOMPARE(Buzzer_setVolume(buzzer, 6), 0);
        QCOMPARE(virtualunit::open(path.toStdString()), std::string());
        QVERIFY(QFile::remove(path));
        QVERIFY(QFile::rename(other, path));
        std::uint16_t volume = 0;
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
        QCOMPARE(int(volume), 6);
    }
};

QTEST_GUILESS_MAIN(UnitFileTest)
#include "tst_unitfile_posix.moc"
