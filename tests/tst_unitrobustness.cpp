#include "frame/DeviceHandle.h"
#include "tests/support/hexFile.h"
#include "tests/support/literals.h"
#include "virtualunit/VirtualUnit.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <sqlite3.h>

#include <array>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

using namespace support;

namespace {

constexpr int startTimeout = 30'000; // milliseconds; sanitizers and a busy machine are slow

QString fromBytes(const std::string &text)
{
    return QString::fromUtf8(text.data(), int(text.size()));
}

/** SQLite's own judgement on a file. */
QString integrity(const QString &file)
{
    sqlite3 *database = nullptr;
    QString answer;
    const auto note = [](void *out, int, char **values, char **) {
        *static_cast<QString *>(out) += QString::fromUtf8(values[0]);
        return 0;
    };
    sqlite3_open_v2(QFile::encodeName(file).constData(), &database, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_busy_timeout(database, startTimeout);
    if (sqlite3_exec(database, "PRAGMA integrity_check", note, &answer, nullptr) != SQLITE_OK)
        answer = QString::fromUtf8(sqlite3_errmsg(database));
    sqlite3_close(database);
    return answer;
}

/** Changes a file behind the unit's back. */
void execute(const QString &file, const QString &sql)
{
    sqlite3 *database = nullptr;
    sqlite3_open_v2(QFile::encodeName(file).constData(), &database, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_busy_timeout(database, startTimeout);
    if (sqlite3_exec(database, qPrintable(sql), nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("%s", sqlite3_errmsg(database));
    sqlite3_close(database);
}

/** What puts a text where the unit's file has a number. */
QString statementFor(const QString &kind)
{
    const QHash<QString, const char *> statements{
        {"text for a value"_s, "REPLACE INTO value VALUES ('Buzzer.volume', 'loud', '', 0, 0)"},
        {"text for a time"_s, "REPLACE INTO value VALUES ('Buzzer.volume', 7, '', 'noon', 0)"},
        {"text for a pin"_s, "REPLACE INTO value VALUES ('Adc.voltage0', 7, '', 0, 'yes')"},
        {"text for a fault"_s, "REPLACE INTO fault VALUES ('Buzzer_getVolume', 'no', 0, 0, 0)"},
        {"text for a delay"_s, "REPLACE INTO delay VALUES ('Buzzer_getVolume', 'long')"},
        {"bytes for a string"_s, "REPLACE INTO string VALUES ('key', CAST(x'FF' AS TEXT))"},
        {"text for the clock"_s, "INSERT INTO unit VALUES ('clock', 'noon')"}};
    return QString::fromLatin1(statements[kind]);
}

/** One operation of each family, as what the unit's file is to them all. */
std::vector<std::pair<QString, DeviceCode>> callEachFamily()
{
    std::vector<std::pair<QString, DeviceCode>> codes;
    uint8_t byte = 7;
    uint16_t word = 7;
    int16_t celsius = 7;
    int32_t number = 7;
    uint32_t windows[3] = {};
    double volts = 7;
    char text[32] = "as it was";
    DiagnosticTimes times{};
    const auto call = [&codes](const char *name, auto operation, const auto &handle, auto... rest) {
        codes.emplace_back(QString::fromLatin1(name), operation(handle, rest...));
    };
#define CALL(Family, operation, ...)                   \
    call(#Family "_" #operation, Family##_##operation, \
        DeviceHandle<Family##_create, Family##_release>() __VA_OPT__(, ) __VA_ARGS__)
    CALL(Hardware, getMainPcbSerial, text, uint32_t(sizeof text));
    CALL(Hardware, getCanCount, &byte);
    CALL(Hardware, hasDisplay, &byte);
    CALL(Adc, getVoltage, 0U, &volts);
    CALL(Versions, getFPGAVersion, &byte, &byte, &byte, &byte);
    CALL(Backlight, getIntensity, &byte);
    CALL(Backlight, setIntensity, uint8_t(1));
    CALL(Backlight, getAutomaticBLFilter, &windows[0], &windows[1], &windows[2], &number);
    CALL(Buzzer, getVolume, &word);
    CALL(Buzzer, setTrigger, true);
    CALL(Can, getBaudrate, uint8_t(1), &word);
    CALL(Config, getHeatingTempLimit, &celsius);
    CALL(Config, setPowerOnStartup, 1);
    CALL(Power, getVideoPowerStatus, &byte);
    CALL(Diagnostics, getPMTemp, uint8_t(0), &celsius, &number);
    CALL(Diagnostics, getTimers, &times);
    CALL(Smart, getDeviceSerial, text, uint32_t(sizeof text));
    CALL(DigIO, setDigIO, uint8_t(3));
    CALL(Firmware, startSSUpgrade, "none.hex", false);
    CALL(FrontLED, setColor, uint8_t(1), uint8_t(2), uint8_t(3));
    CALL(LightSensor, stopAverageCalc);
    CALL(LightSensor, getIlluminance, &word);
    CALL(Telematics, getAvailable, &number);
    CALL(Touch, getMode, &number);
    CALL(Battery, isAvailable, &byte);
    CALL(Settings, getString, "VornsettingsGsmPort", text, uint32_t(sizeof text));
    CALL(Settings, setString, "VornsettingsGsmPort", "COM9");
#undef CALL
    if (byte != 7 || word != 7 || celsius != 7 || number != 7 || qstrcmp(text, "as it was") != 0)
        codes.emplace_back("an out value was written"_s, DEVICE_OK);
    return codes;
}

} // namespace

/** The unit's file under several processes, under kill -9, and when it is not what it should be. */
class UnitRobustnessTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // Windows removes no file that is open, so the unit leaves the old folder before it goes.
        const auto old = std::exchange(folder, std::make_unique<QTemporaryDir>());
        QVERIFY(folder->isValid());
        qputenv("VORN_UNIT", QFile::encodeName(unitFile()));
        QCOMPARE(fromBytes(virtualunit::open(unitFile().toStdString())), QString());
    }

    void survivesKilledWriters()
    {
        QProcess first;
        start(first, {"write"_s});
        QVERIFY(first.waitForReadyRead(startTimeout));
        first.kill();
        QVERIFY(first.waitForFinished(startTimeout));
        for (int kills = 0; kills < 220; ++kills) {
            QProcess writer;
            start(writer, {"write"_s});
            QVERIFY(writer.waitForReadyRead(startTimeout));
            // At any point of its work, so some of them while it writes to the disk.
            QElapsedTimer timer;
            timer.start();
            const qint64 patience = QRandomGenerator::global()->bounded(3'000'000);
            while (timer.nsecsElapsed() < patience) {
            }
            writer.kill();
            QVERIFY(writer.waitForFinished(startTimeout));
            checkWholeValues();
            if (QTest::currentTestFailed())
                return;
            if (kills % 20 == 0)
                QCOMPARE(integrity(unitFile()), "ok"_s);
        }
        QCOMPARE(integrity(unitFile()), "ok"_s);
    }

    void survivesKilledProgrammers()
    {
        const QString files[] = {folder->filePath("a.hex"_s), folder->filePath("b.hex"_s)};
        for (int i = 0; i < 2; ++i) {
            QFile file(files[i]);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(support::hexFile(QByteArray(300'000, char('a' + i)), 0, 128));
        }
        QCOMPARE(virtualunit::set("Firmware.duration", "0"), std::string());
        QStringList versions[2];
        for (int kills = 0; kills < 20; ++kills) {
            QProcess programmer;
            start(programmer, {"program"_s, files[kills % 2], files[1 - kills % 2]});
            QVERIFY(programmer.waitForReadyRead(startTimeout));
            QTest::qWait(QRandomGenerator::global()->bounded(15));
            programmer.kill();
            QVERIFY(programmer.waitForFinished(startTimeout));

            // One of the two images is there, wholly, with its version.
            int matching = 0;
            for (int i = 0; i < 2; ++i) {
                const DeviceHandle<Firmware_create, Firmware_release> firmware;
                const auto path = files[i].toLatin1();
                QCOMPARE(Firmware_startSSVerification(firmware, path.constData(), false), 0);
                FirmwareUpgradeStatus status{};
                while (status.state < FIRMWARE_DONE)
                    QCOMPARE(Firmware_getUpgradeStatus(firmware, &status, true), 0);
                if (status.errorCode != 0)
                    continue;
                ++matching;
                std::string version;
                QCOMPARE(virtualunit::get("Versions.ss", version), std::string());
                versions[i] << fromBytes(version);
                versions[i].removeDuplicates();
            }
            QCOMPARE(matching, 1);
        }
        for (const auto &seen : versions)
            QVERIFY2(seen.size() <= 1, qPrintable(seen.join(QLatin1Char(' '))));
        QCOMPARE(integrity(unitFile()), "ok"_s);
    }

    void servesSeveralProcesses()
    {
        constexpr int last = 300;
        std::array<QProcess, 3> writers;
        QProcess rounds;
        start(rounds, {"write"_s});
        QVERIFY(rounds.waitForReadyRead(startTimeout));
        for (std::size_t i = 0; i < writers.size(); ++i) {
            const auto key = "key%1"_s.arg(i);
            start(writers[i], {"count"_s, key, QString::number(last)});
        }
        while (writers[0].state() != QProcess::NotRunning) {
            checkWholeValues();
            if (QTest::currentTestFailed())
                return;
            writers[0].waitForFinished(1);
        }
        const DeviceHandle<Settings_create, Settings_release> settings;
        for (std::size_t i = 0; i < writers.size(); ++i) {
            QVERIFY(writers[i].state() == QProcess::NotRunning ||
                    writers[i].waitForFinished(startTimeout * 4));
            QCOMPARE(writers[i].exitCode(), 0);
            char text[32] = {};
            const auto key = "key%1"_s.arg(i).toLatin1();
            QCOMPARE(Settings_getString(settings, key.constData(), text, sizeof text), 0);
            QCOMPARE(QByteArray(text), QByteArray::number(last));
        }
        QCOMPARE(rounds.state(), QProcess::Running);
        rounds.kill();
        QVERIFY(rounds.waitForFinished(startTimeout));
    }

    void showsChangesOfOthersAtOnce()
    {
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t volume = 0;
        for (const int wanted : {11, 12, 13, 49}) {
            QCOMPARE(QProcess::execute(VORN_BIN_DIR "/vornunit"_s,
                         {"set"_s, "Buzzer.volume"_s, QString::number(wanted)}),
                0);
            QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
            QCOMPARE(int(volume), wanted);
        }
        QCOMPARE(QProcess::execute(
                     VORN_BIN_DIR "/vornunit"_s, {"fault"_s, "Buzzer_getVolume"_s, "-1"_s}),
            0);
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), -1);
    }

    /** A call that counts waits for another process, and goes on counting from what that one
     * counted.
     */
    void changesWhatOthersJustChanged()
    {
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t volume = 0;
        QCOMPARE(virtualunit::setFault("Buzzer_getVolume", 14, 3, 0), std::string());
        sqlite3 *other = nullptr;
        sqlite3_open_v2(
            QFile::encodeName(unitFile()).constData(), &other, SQLITE_OPEN_READWRITE, nullptr);
        QCOMPARE(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
        DeviceCode code = DEVICE_OK;
        std::thread caller([&] { code = Buzzer_getVolume(buzzer, &volume); });
        QTest::qWait(100); // for it to have read the old count
        const int changed =
            sqlite3_exec(other, "UPDATE fault SET seen = 2; COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(other);
        caller.join();
        QCOMPARE(changed, SQLITE_OK);
        QCOMPARE(code, 14);
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), DEVICE_OK); // those were three
    }

    void bringsOlderFilesForward_data()
    {
        QTest::addColumn<QString>("difference");
        QTest::newRow("before short messages") << "DROP TABLE message;"_s;
        QTest::newRow("with short messages") << QString();
    }

    void bringsOlderFilesForward()
    {
        QFETCH(QString, difference);
        const QString file = folder->filePath("old.sqlite"_s);
        const auto tool = [&file](const QStringList &arguments) {
            QProcess process;
            process.start(VORN_BIN_DIR "/vornunit"_s, QStringList{"--unit"_s, file} + arguments);
            process.waitForFinished(startTimeout);
            return QString::fromUtf8(
                process.readAllStandardError() + process.readAllStandardOutput());
        };
        QCOMPARE(virtualunit::open(file.toStdString()), std::string());
        QCOMPARE(virtualunit::set("Buzzer.volume", "23"), std::string());
        {
            const DeviceHandle<Settings_create, Settings_release> settings;
            QCOMPARE(Settings_setString(settings, "VornsettingsGpsPort", "COM7"), 0);
        }
        const bool hasMessages = difference.isEmpty();
        if (hasMessages)
            QCOMPARE(virtualunit::addShortMessage("123", "kept"), std::string());
        QCOMPARE(virtualunit::open(unitFile().toStdString()), std::string());
        // A property that came later has no row in the file.
        execute(file, "DELETE FROM value WHERE name LIKE 'Gsm.%';"_s + difference +
                          "PRAGMA user_version = 1"_s);

        const QString messages = tool({"sms"_s});
        QCOMPARE(messages.contains("kept"_s), hasMessages);
        QVERIFY2(!messages.contains("vornunit:"_s), qPrintable(messages));
        QCOMPARE(tool({"get"_s, "Buzzer.volume"_s}).trimmed(), "23"_s);
        QCOMPARE(virtualunit::open(file.toStdString()), std::string());
        QCOMPARE(virtualunit::addShortMessage("456", "new"), std::string());
        std::string value;
        QCOMPARE(virtualunit::get("Gsm.pinTries", value), std::string());
        QCOMPARE(value, std::string("3"));
        QCOMPARE(virtualunit::get("Settings.VornsettingsGpsPort", value), std::string());
        QCOMPARE(value, std::string("COM7"));
        QCOMPARE(integrity(file), "ok"_s);
    }

    void leavesFilesOfOtherVersionsAlone_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("of the future") << 1000;
        QTest::newRow("of none") << 0;
        QTest::newRow("below all") << -1;
    }

    void leavesFilesOfOtherVersionsAlone()
    {
        QFETCH(int, version);
        const QString file = folder->filePath("other.sqlite"_s);
        QCOMPARE(virtualunit::open(file.toStdString()), std::string());
        QCOMPARE(virtualunit::open(unitFile().toStdString()), std::string());
        execute(file, "PRAGMA user_version = %1"_s.arg(version));
        const QString said = fromBytes(virtualunit::open(file.toStdString()));
        QVERIFY2(said.contains("another version"_s), qPrintable(said));
        QCOMPARE(virtualunit::open(unitFile().toStdString()), std::string());
    }

    void leavesBadFilesAlone_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind :
            {"text", "zero bytes", "damaged middle", "cut", "foreign database", "folder",
                "below a file", "text for a value", "text for a time", "text for a pin",
                "text for a fault", "text for a delay", "text for the clock", "bytes for a string"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    void leavesBadFilesAlone()
    {
        QFETCH(QString, kind);
        const QString file = folder->filePath("bad.sqlite"_s);
        QString path = file;
        if (kind == "folder"_s) {
            QVERIFY(QDir().mkdir(file));
        } else if (kind == "foreign database"_s) {
            sqlite3 *database = nullptr;
            QCOMPARE(sqlite3_open(QFile::encodeName(file).constData(), &database), SQLITE_OK);
            QCOMPARE(sqlite3_exec(database,
                         "CREATE TABLE letters(text); INSERT INTO letters VALUES('dear');", nullptr,
                         nullptr, nullptr),
                SQLITE_OK);
            sqlite3_close(database);
        } else {
            // A sound unit first, all of it in its one file.
            QCOMPARE(QProcess::execute(
                         VORN_BIN_DIR "/vornunit"_s, {"--unit"_s, file, "init"_s, "full"_s}),
                0);
            QFile unit(file);
            QVERIFY(unit.open(QIODevice::ReadWrite));
            QVERIFY(unit.size() > 8192);
            if (kind == "text"_s) {
                unit.resize(0);
                unit.write("Dear Sir or Madam,\nthis is no unit.\n");
            } else if (kind == "zero bytes"_s) {
                const auto size = unit.size();
                unit.resize(0);
                unit.resize(size);
            } else if (kind == "damaged middle"_s) {
                unit.seek(100);
                unit.write(QByteArray(int(unit.size()) - 100, '\xA5'));
            } else if (kind == "cut"_s) {
                unit.resize(unit.size() / 2);
            } else if (kind.contains(" for "_s)) {
                execute(file, statementFor(kind));
            } else {
                path = file + "/unit.sqlite"_s;
            }
            unit.close();
        }
        const auto content = [&file] {
            QFile bad(file);
            return bad.open(QIODevice::ReadOnly) ? bad.readAll() : QByteArray();
        };
        const auto before = content();
        if (kind.contains(" for "_s)) {
            QVERIFY(!virtualunit::open(path.toStdString()).empty());
            uint16_t volume = 0;
            QCOMPARE(Buzzer_getVolume(DeviceHandle<Buzzer_create, Buzzer_release>(), &volume), 9);
        }

        const bool openSays = !virtualunit::open(path.toStdString()).empty();
        for (const auto &[operation, code] : callEachFamily()) {
            const QString what = "%1 = %2 %3"_s.arg(operation).arg(code).arg(
                QString::fromLatin1(deviceErrorText(code)));
            QVERIFY2(code != 0 && code != 2 && code != 18 && code != 20, qPrintable(what));
            QVERIFY2(what.contains("state file"_s), qPrintable(what));
        }
        std::string value;
        QVERIFY(openSays);
        QVERIFY(!virtualunit::get("Buzzer.volume", value).empty());
        QVERIFY(!virtualunit::set("Buzzer.volume", "1").empty());

        for (const auto &arguments : {QStringList{"list"_s}, QStringList{"init"_s, "basic"_s}}) {
            QProcess tool;
            tool.start(VORN_BIN_DIR "/vornunit"_s, QStringList{"--unit"_s, path} + arguments);
            QVERIFY(tool.waitForFinished(startTimeout));
            QCOMPARE(tool.exitCode(), 1);
            QVERIFY(tool.readAllStandardError().startsWith("vornunit: "));
        }
        QCOMPARE(content(), before);
        QCOMPARE(QFileInfo(file).isDir(), kind == "folder"_s);

        // The library recovers as soon as it is given a sound file.
        QCOMPARE(virtualunit::open(unitFile().toStdString()), std::string());
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t volume = 0;
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
    }

private:
    static void start(QProcess &process, const QStringList &arguments)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Where hundreds of processes are killed, a busy wine now and then fails to start the next
        // one.
        bool started = false;
        for (int attempts = 0; attempts < 3 && !started; ++attempts) {
            process.start(VORN_TEST_PROGRAMS "/unitwriter"_s, arguments);
            started = process.waitForStarted(startTimeout);
        }
        QVERIFY2(started, qPrintable(process.errorString()));
    }

    /** What unitwriter writes in one operation comes from one round. */
    void checkWholeValues()
    {
        const DeviceHandle<Backlight_create, Backlight_release> backlight;
        const DeviceHandle<FrontLED_create, FrontLED_release> led;
        const DeviceHandle<Settings_create, Settings_release> settings;
        uint32_t average = 0;
        uint32_t reject = 0;
        uint32_t delta = 0;
        int32_t mode = 0;
        QCOMPARE(Backlight_getAutomaticBLFilter(backlight, &average, &reject, &delta, &mode), 0);
        QCOMPARE(reject, average);
        QCOMPARE(delta, average);
        QCOMPARE(uint32_t(mode), average % 3);
        uint8_t red = 0;
        uint8_t green = 0;
        uint8_t blue = 0;
        QCOMPARE(FrontLED_getColor(led, &red, &green, &blue), 0);
        QCOMPARE(green, red);
        QCOMPARE(blue, red);
        char text[255] = {};
        QCOMPARE(Settings_getString(settings, "unitwriter", text, sizeof text), 0);
        QCOMPARE(QByteArray(text), QByteArray(200, text[0]));
    }
    QString unitFile() const { return folder->filePath("unit.sqlite"_s); }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(UnitRobustnessTest)
#include "tst_unitrobustness.moc"
