#include "tests/support/DeviceTest.h"
#include "tests/support/hexFile.h"
#include "tests/support/system.h"

#include "frame/DeviceHandle.h"
#include "virtualunit/VirtualUnit.h"
#include "virtualunit/state/codes.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <functional>
#include <vector>

using namespace support;

namespace {

using Start = DeviceCode (*)(FirmwareHandle, const char *, bool);
using Version = DeviceCode (*)(VersionsHandle, uint8_t *, uint8_t *, uint8_t *, uint8_t *);

/** One programmable controller, as the contract has it. */
struct Target {
    const char *name;
    Start upgrade;
    Start verify;
    Version version;
};

constexpr Target targets[] = {
    {"FPGA", Firmware_startFpgaUpgrade, Firmware_startFpgaVerification, Versions_getFPGAVersion},
    {"system supervisor", Firmware_startSSUpgrade, Firmware_startSSVerification,
        Versions_getSSVersion},
    {"front controller", Firmware_startFrontUpgrade, Firmware_startFrontVerification,
        Versions_getFrontVersion},
};

QByteArray image(int size, int seed = 1)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        bytes[i] = char(i * seed + i / 256);
    return bytes;
}

QByteArray versions()
{
    const DeviceHandle<Versions_create, Versions_release> handle;
    QByteArray text;
    for (const auto &target : targets) {
        uint8_t number[4] = {};
        if (target.version(handle, &number[0], &number[1], &number[2], &number[3]) != DEVICE_OK)
            qFatal("no version");
        for (const auto part : number)
            text += QByteArray::number(part) + '.';
        text += ' ';
    }
    return text;
}

QByteArray versionOf(int target)
{
    return versions().split(' ')[target];
}

} // namespace

/** Firmware jobs, through the contract, from the file to the version that it becomes. */
class FirmwareTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void passesThroughTheStates_data()
    {
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("duration");
        QTest::addColumn<bool>("upgrade");
        for (int target = 0; target < 3; ++target) {
            for (const bool upgrade : {true, false}) {
                for (const char *duration : {"4000", "500", "1", "0"})
                    QTest::addRow("%s %s %s", targets[target].name,
                        upgrade ? "upgrade" : "verification", duration)
                        << target << QString::fromLatin1(duration) << upgrade;
            }
        }
    }

    void passesThroughTheStates()
    {
        QFETCH(int, target);
        QFETCH(QString, duration);
        QFETCH(bool, upgrade);
        write("a.hex"_s, hexFile(image(5000)));
        QCOMPARE(runJob(targets[target].upgrade, path("a.hex"_s)).errorCode, 0);
        setUnit("Firmware.duration"_s, duration);

        const Handle handle;
        const auto start = upgrade ? targets[target].upgrade : targets[target].verify;
        QCOMPARE(start(handle, path("a.hex"_s).constData(), false), DEVICE_OK);
        QList<int> states;
        int percent = 0;
        for (const auto &status : follow(handle)) {
            QCOMPARE(status.errorCode, 0);
            QVERIFY2(status.percent >= percent, "progress goes backwards");
            QVERIFY2(
                status.percent < 100 || status.state == FIRMWARE_DONE, "100 percent too early");
            percent = status.percent;
            if (states.isEmpty() || states.constLast() != status.state)
                states << status.state;
        }
        QCOMPARE(percent, 100);
        QCOMPARE(
            states, upgrade ? (QList<int>{0, 1, 2, 3, 4, 5, 6}) : (QList<int>{0, 1, 2, 3, 5, 6}));
    }

    void upgrades_data()
    {
        QTest::addColumn<int>("target");
        for (int target = 0; target < 3; ++target)
            QTest::newRow(targets[target].name) << target;
    }

    void upgrades()
    {
        QFETCH(int, target);
        write("a.hex"_s, hexFile(image(70'000)));
        write("b.hex"_s, hexFile(image(70'000, 3)));
        const auto before = versions().split(' ');

        QCOMPARE(runJob(targets[target].upgrade, path("a.hex"_s)).state, int(FIRMWARE_DONE));
        const auto first = versions().split(' ');
        for (int other = 0; other < 3; ++other)
            QCOMPARE(first[other] == before[other], other != target);

        // A version is the image's: another one comes with another image and goes with it.
        runJob(targets[target].upgrade, path("b.hex"_s));
        QVERIFY(versionOf(target) != first[target]);
        runJob(targets[target].upgrade, path("a.hex"_s));
        QCOMPARE(versionOf(target), first[target]);
    }

    void verifiesAgainstWhatTheUnitHolds()
    {
        const QByteArray content = image(5000);
        const QByteArray good = path("good.hex"_s);
        write("good.hex"_s, hexFile(content));
        write("other-lines.hex"_s, hexFile(content, 0, 32));
        write("shorter.hex"_s, hexFile(content.chopped(1)));
        write("moved.hex"_s, hexFile(content, 16));
        QByteArray spoiled = content;
        spoiled[4321] = char(spoiled[4321] ^ 1);
        write("spoiled.hex"_s, hexFile(spoiled));

        for (const auto &target : targets) {
            // Nobody knows the bytes of the image from the factory.
            QCOMPARE(runJob(target.verify, good).errorCode, int(virtualunit::NoImage));
            runJob(target.upgrade, good);
            const auto version = versions();
            QCOMPARE(runJob(target.verify, good).errorCode, 0);
            QCOMPARE(runJob(target.verify, path("other-lines.hex"_s)).errorCode, 0);
            for (const char *name : {"shorter.hex", "moved.hex", "spoiled.hex"}) {
                const Handle handle;
                QCOMPARE(
                    target.verify(handle, path(QLatin1String(name)).constData(), false), DEVICE_OK);
                const auto all = follow(handle);
                const auto &failing = all[all.size() - 2];
                QCOMPARE(failing.state, int(FIRMWARE_VERIFYING));
                QCOMPARE(failing.errorCode, int(virtualunit::VerificationFailed));
                QCOMPARE(all.back().state, int(FIRMWARE_FAILED));
                QCOMPARE(all.back().errorCode, int(virtualunit::VerificationFailed));
            }
            QCOMPARE(versions(), version);
            QCOMPARE(runJob(target.verify, good).errorCode, 0);
        }
    }

    void fails_data()
    {
        using namespace virtualunit;
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("target");
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("code");
        const auto good = hexFile(image(100));

        const auto row = [this](const char *name, const QByteArray &content, int state, int code,
                             int target = 1) {
            const QString file = QLatin1String(name) + ".hex"_s;
            write(file, content);
            QTest::newRow(name) << path(file) << target << state << code;
        };
        const int reading = FIRMWARE_READING;
        const int converting = FIRMWARE_CONVERTING;
        QTest::newRow("empty path") << QByteArray() << 1 << reading << int(FileNotFound);
        QTest::newRow("missing") << path("none.hex"_s) << 1 << reading << int(FileNotFound);
        QTest::newRow("in no folder")
            << path("no/where/a.hex"_s) << 1 << reading << int(FileNotFound);
        QTest::newRow("folder") << path(QString()) << 1 << reading << int(FileUnreadable);
        for (const QByteArray &name : oddFiles(folder.path()))
            QTest::newRow(name.constData()) << name << 1 << reading << int(FileUnreadable);
        QFile huge(write("huge.hex"_s, good));
        huge.resize(qint64(3) << 30);
        QTest::newRow("huge") << path("huge.hex"_s) << 0 << reading << int(FileTooLarge);
        row("empty", QByteArray(), converting, FileMalformed);
        row("garbage", QByteArray(10'000, '\xA5'), converting, FileMalformed);
        row("cut", good.chopped(12), converting, FileMalformed);
        row("checksum", QByteArray(good).replace("\n:00000001FF", "\n:00000001FE"), converting,
            FileChecksum);
        row("without data", hexRecord(1, 0), converting, FileMalformed);
        const auto overMebibyte = hexFile(image((1 << 20) + 1));
        row("too large for the supervisor", overMebibyte, converting, FileTooLarge, 1);
        row("too large for the front", overMebibyte, converting, FileTooLarge, 2);
        row("too large for the FPGA", hexFile(QByteArray((16 << 20) + 1, 'x'), 0, 255), converting,
            FileTooLarge, 0);
    }

    void fails()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, target);
        const auto before = versions();
        write("held.hex"_s, hexFile("held"));
        runJob(targets[target].upgrade, path("held.hex"_s));
        const auto held = versions();
        QVERIFY(held != before);

        for (const auto start : {targets[target].upgrade, targets[target].verify}) {
            const Handle handle;
            QCOMPARE(start(handle, file.constData(), false), DEVICE_OK);
            const auto all = follow(handle);
            QVERIFY(all.size() > 2);
            const auto &failing = all[all.size() - 2];
            QTEST(int(failing.state), "state");
            QTEST(int(failing.errorCode), "code");
            QVERIFY(failing.percent < 100);
            QCOMPARE(all.back().state, int(FIRMWARE_FAILED));
            QTEST(int(all.back().errorCode), "code");
            QCOMPARE(all.back().percent, failing.percent);
            // It stays so.
            QCOMPARE(ask(handle).state, int(FIRMWARE_FAILED));
            QTEST(int(ask(handle).errorCode), "code");
        }
        QCOMPARE(versions(), held);
        QCOMPARE(runJob(targets[target].verify, path("held.hex"_s)).errorCode, 0);
    }

    void findsLatin1Names()
    {
        const QString name = QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                               "e \xC3\xA9\xC3\xBF.mcs");
        write(name, hexFile(image(100)));
        const auto latin1 = path(name);
        QVERIFY(latin1.contains('\xFC'));
        QCOMPARE(runJob(Firmware_startFpgaUpgrade, latin1).errorCode, 0);
    }

    void refusesWrongCalls()
    {
        using namespace virtualunit;
        write("a.hex"_s, hexFile(image(100)));
        const auto file = path("a.hex"_s);
        const Handle handle;
        FirmwareUpgradeStatus status{-1, 255, -1};
        QCOMPARE(Firmware_getUpgradeStatus(handle, &status, true), int(NoJob));
        for (const auto &target : targets) {
            for (const auto start : {target.upgrade, target.verify}) {
                QCOMPARE(start(handle, nullptr, false), int(MissingArgument));
                QCOMPARE(start(nullptr, file.constData(), false), int(InvalidHandle));
            }
        }
        QCOMPARE(Firmware_getUpgradeStatus(handle, &status, false), int(NoJob));
        QCOMPARE(Firmware_getUpgradeStatus(nullptr, &status, true), int(InvalidHandle));
        QCOMPARE(Firmware_shutDown(nullptr), int(InvalidHandle));
        QCOMPARE(Firmware_startSSUpgrade(handle, file.constData(), false), DEVICE_OK);
        QCOMPARE(Firmware_getUpgradeStatus(handle, nullptr, false), int(MissingArgument));
        QCOMPARE(status.state, -1);
        QCOMPARE(int(status.percent), 255);
        QCOMPARE(status.errorCode, -1);
        fault("Firmware_getUpgradeStatus"_s, 6, 1);
        QCOMPARE(Firmware_getUpgradeStatus(handle, &status, false), 6);
        QCOMPARE(status.state, -1);
        QCOMPARE(follow(handle).back().state, int(FIRMWARE_DONE));
    }

    void runsOneJobOnAHandle()
    {
        write("a.hex"_s, hexFile(image(100)));
        const auto file = path("a.hex"_s);
        const Handle handle;
        const Handle other;
        QCOMPARE(Firmware_startSSUpgrade(handle, file.constData(), false), DEVICE_OK);
        for (const auto &target : targets) {
            QCOMPARE(target.upgrade(handle, file.constData(), false), int(virtualunit::JobRunning));
            QCOMPARE(target.verify(handle, file.constData(), false), int(virtualunit::JobRunning));
        }
        QCOMPARE(Firmware_startFrontUpgrade(other, file.constData(), false), DEVICE_OK);
        QCOMPARE(follow(handle).back().state, int(FIRMWARE_DONE));
        QCOMPARE(ask(other).state, int(FIRMWARE_INITIATING));
        QCOMPARE(follow(other).back().state, int(FIRMWARE_DONE));
        // After the end, good or bad, there is room for the next.
        QCOMPARE(Firmware_startSSVerification(handle, "none", false), DEVICE_OK);
        QCOMPARE(follow(handle).back().state, int(FIRMWARE_FAILED));
        QCOMPARE(Firmware_startSSVerification(handle, file.constData(), false), DEVICE_OK);
        QCOMPARE(follow(handle).back().state, int(FIRMWARE_DONE));
    }

    void storesNothingBeforeTheEnd()
    {
        write("a.hex"_s, hexFile(image(100)));
        const auto before = versions();
        const Handle handle;
        QCOMPARE(Firmware_startSSUpgrade(handle, path("a.hex"_s).constData(), false), DEVICE_OK);
        while (ask(handle, true).state != FIRMWARE_DONE)
            QCOMPARE(versions(), before);
        QVERIFY(versions() != before);
    }

    void forgetsTheJobOfAReleasedHandle()
    {
        write("a.hex"_s, hexFile(image(100)));
        const auto before = versions();
        {
            const Handle handle;
            QCOMPARE(
                Firmware_startSSUpgrade(handle, path("a.hex"_s).constData(), false), DEVICE_OK);
            while (ask(handle, true).state != FIRMWARE_FLASHING) {
            }
        }
        virtualunit::advanceClock(60'000);
        const Handle next;
        FirmwareUpgradeStatus status{};
        QCOMPARE(Firmware_getUpgradeStatus(next, &status, false), int(virtualunit::NoJob));
        QCOMPARE(versions(), before);
    }

    void waitsForNews()
    {
        write("a.hex"_s, hexFile(image(100)));
        const auto file = path("a.hex"_s);
        setUnit("Firmware.duration"_s, "60000"_s);
        QCOMPARE(virtualunit::releaseClock(), std::string());
        QElapsedTimer timer;
        // On a busy machine a single question may take long all the same.
        qint64 fastestFirst = 1000;
        qint64 fastestWithoutFlag = 1000;
        for (int i = 0; i < 10; ++i) {
            const Handle handle;
            QCOMPARE(Firmware_startSSUpgrade(handle, file.constData(), false), DEVICE_OK);
            timer.start();
            QCOMPARE(ask(handle, true).state, int(FIRMWARE_INITIATING));
            fastestFirst = qMin(fastestFirst, timer.elapsed());
            timer.start();
            ask(handle, false);
            fastestWithoutFlag = qMin(fastestWithoutFlag, timer.elapsed());
        }
        QVERIFY2(fastestFirst < 80, "the first status is news in itself");
        QVERIFY2(fastestWithoutFlag < 80, "without the flag it doesn't wait");

        // A percent takes 600 ms here: most questions wait in vain, and then for the whole time.
        const Handle handle;
        QCOMPARE(Firmware_startSSUpgrade(handle, file.constData(), false), DEVICE_OK);
        ask(handle, true);
        timer.start();
        ask(handle, true);
        ask(handle, true);
        ask(handle, true);
        QVERIFY2(timer.elapsed() >= 100, qPrintable(QString::number(timer.elapsed())));

        // A percent each 20 ms: there is news all the time, five times as often as waiting in vain.
        setUnit("Firmware.duration"_s, "2000"_s);
        int questions = 0;
        while (ask(handle, true).state != FIRMWARE_DONE)
            ++questions;
        QVERIFY2(questions > 30, qPrintable(QString::number(questions)));

        // What ends the wait is what is told: news, which the last question hadn't.
        const Handle watched;
        setUnit("Firmware.duration"_s, "3000"_s); // a percent each 30 ms
        QCOMPARE(Firmware_startSSUpgrade(watched, file.constData(), false), DEVICE_OK);
        auto told = ask(watched, true);
        int news = 0;
        for (int i = 0; i < 20; ++i) {
            const auto next = ask(watched, true);
            news += next.percent != told.percent || next.state != told.state ? 1 : 0;
            told = next;
        }
        QVERIFY2(news >= 15, qPrintable(QString::number(news)));
    }

    void takesAFewSeconds()
    {
        write("a.hex"_s, hexFile(image(100)));
        const Handle handle;
        QCOMPARE(Firmware_startSSUpgrade(handle, path("a.hex"_s).constData(), false), DEVICE_OK);
        // The clock stands still: a waiting question lets the 100 ms that it would take go by.
        const auto steps = follow(handle).size();
        QVERIFY2(steps > 20 && steps < 100, qPrintable(QString::number(steps)));
        // And nothing but such a question does.
        QCOMPARE(Firmware_startSSUpgrade(handle, path("a.hex"_s).constData(), false), DEVICE_OK);
        for (int i = 0; i < 20; ++i)
            QCOMPARE(int(ask(handle).percent), 0);
        virtualunit::advanceClock(2000);
        QVERIFY(ask(handle).state > FIRMWARE_INITIATING);
    }

    void survivesSteppingClock()
    {
        write("a.hex"_s, hexFile(image(100)));
        const Handle handle;
        QCOMPARE(Firmware_startSSUpgrade(handle, path("a.hex"_s).constData(), false), DEVICE_OK);
        ask(handle);
        virtualunit::advanceClock(1000);
        const auto status = ask(handle);
        QCOMPARE(virtualunit::setClock(0), std::string());
        QCOMPARE(ask(handle).percent >= status.percent, true);
        QCOMPARE(follow(handle).back().state, int(FIRMWARE_DONE));
    }

    void shutsDownTheUnitOnly()
    {
        const Handle handle;
        QCOMPARE(unit("Unit.running"_s), "true"_s);
        QCOMPARE(Firmware_shutDown(handle), DEVICE_OK);
        QCOMPARE(unit("Unit.running"_s), "false"_s);
        setUnit("Unit.running"_s, "true"_s);
        fault("Firmware_shutDown"_s, 7);
        QCOMPARE(Firmware_shutDown(handle), 7);
        QCOMPARE(unit("Unit.running"_s), "true"_s);
    }

private:
    using Handle = DeviceHandle<Firmware_create, Firmware_release>;

    QString write(const QString &name, const QByteArray &content)
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("can't write %s", qPrintable(name));
        return file.fileName();
    }
    QByteArray path(const QString &name) const { return folder.filePath(name).toLatin1(); }

    static FirmwareUpgradeStatus ask(FirmwareHandle handle, bool wait = false)
    {
        FirmwareUpgradeStatus status{-1, 255, -1};
        if (Firmware_getUpgradeStatus(handle, &status, wait) != DEVICE_OK)
            qFatal("no status");
        return status;
    }

    /** Everything that the job says until it has ended for good, a tenth of a second apart. */
    static std::vector<FirmwareUpgradeStatus> follow(FirmwareHandle handle)
    {
        std::vector<FirmwareUpgradeStatus> all;
        do {
            if (all.size() > 1000)
                qFatal("the job doesn't end");
            all.push_back(ask(handle, true));
        } while (all.back().state < FIRMWARE_DONE);
        return all;
    }

    static FirmwareUpgradeStatus runJob(Start start, const QByteArray &path)
    {
        const Handle handle;
        if (start(handle, path.constData(), false) != DEVICE_OK)
            qFatal("the job doesn't start");
        return follow(handle).back();
    }

    QTemporaryDir folder;
};

VORN_TEST_MAIN(FirmwareTest)
#include "tst_firmware.moc"
