#include "frame/DeviceHandle.h"
#include "tests/support/literals.h"
#include "virtualunit/VirtualUnit.h"
#include "virtualunit/state/codes.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>
#include <functional>
#include <new>

namespace {

/** How many requests for memory of this thread still succeed; none counts below zero. */
thread_local int granted = -1;

void *memory(std::size_t size)
{
    if (granted == 0)
        return nullptr;
    if (granted > 0)
        --granted;
    return std::malloc(size);
}

} // namespace

/** The device library takes its memory from here too: the program's own come before the system's.
 */
void *operator new(std::size_t size)
{
    if (void *place = memory(size))
        return place;
    throw std::bad_alloc();
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return memory(size);
}
void operator delete(void *place) noexcept
{
    std::free(place);
}
void operator delete(void *place, std::size_t) noexcept
{
    std::free(place);
}

using namespace support;

using Call = std::function<DeviceCode()>;
Q_DECLARE_METATYPE(Call)

/** The virtual unit when memory runs out amid a call, at each place in turn. */
class NoMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QCOMPARE(virtualunit::open(folder.filePath("unit.sqlite"_s).toStdString()), std::string());
        QCOMPARE(virtualunit::loadProfile("full"), std::string());
        virtualunit::startJournal(); // which takes memory, too
    }

    void callFailsInOrder_data()
    {
        static const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        static const DeviceHandle<Hardware_create, Hardware_release> hardware;
        static const DeviceHandle<Settings_create, Settings_release> settings;
        static const DeviceHandle<Firmware_create, Firmware_release> firmware;
        static std::uint16_t number = 0;
        static char text[64];
        QTest::addColumn<Call>("call");
        QTest::newRow("reads") << Call([] { return Buzzer_getVolume(buzzer, &number); });
        QTest::newRow("writes") << Call([] { return Buzzer_setVolume(buzzer, 20); });
        QTest::newRow("reads a text")
            << Call([] { return Hardware_getMainPcbSerial(hardware, text, sizeof text); });
        QTest::newRow("writes a text") << Call([] {
            return Settings_setString(settings, "VornsettingsGsmPort", "a port, and a long one");
        });
        QTest::newRow("starts a job") << Call([] {
            return Firmware_startSSVerification(firmware, "a file that isn't there", false);
        });
    }

    void callFailsInOrder()
    {
        QFETCH(Call, call);
        int failures = 0;
        DeviceCode code = virtualunit::GeneralFault;
        for (int enough = 0; code != DEVICE_OK && enough < 10'000; ++enough) {
            granted = enough;
            code = call();
            const bool wasEnough = granted > 0;
            granted = -1;
            if (code != DEVICE_OK) {
                QCOMPARE(code, int(virtualunit::GeneralFault));
                QVERIFY(!wasEnough);
                ++failures;
            }
        }
        QCOMPARE(code, DEVICE_OK);
        QVERIFY(failures > 0);
    }

    void handleIsMadeOrNot()
    {
        BuzzerHandle handle = nullptr;
        for (int enough = 0; !handle && enough < 1000; ++enough) {
            granted = enough;
            handle = Buzzer_create();
            granted = -1;
        }
        QVERIFY(handle);
        std::uint16_t volume = 0;
        QCOMPARE(Buzzer_getVolume(handle, &volume), DEVICE_OK);
        granted = 0;
        Buzzer_release(handle);
        granted = -1;
        QCOMPARE(Buzzer_getVolume(handle, &volume), int(virtualunit::InvalidHandle));
    }

private:
    QTemporaryDir folder;
};

QTEST_GUILESS_MAIN(NoMemoryTest)
#include "tst_nomemory_posix.moc"
