#include "report/systemReport.h"
#include "reports/unit.h"
#include "tests/support/BiosData.h"
#include "tests/support/PageTest.h"
#include "virtualunit/VirtualUnit.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace {

using namespace support;

/** A report without its second line, which tells when it was made. */
QByteArrayList undated(const QByteArray &report)
{
    QByteArrayList lines = report.split('\n');
    lines.removeAt(1);
    return lines;
}

/** What a device may hold in a text, at times something that looks like what it isn't. */
QString randomText(QRandomGenerator &random)
{
    const QStringList odd{"N/A"_s, "Error(14) x"_s, ""_s, " "_s, "12"_s, "1e5"_s, "-0"_s, "a: b"_s};
    if (random.bounded(6) == 0)
        return odd[random.bounded(int(odd.size()))];
    QString text;
    for (int length = random.bounded(19); length > 0; --length) {
        const int character = random.bounded(32, 256);
        text += QChar(character == 127 ? '-' : character);
    }
    return text;
}

} // namespace

/** Units that are made from reports report the same again. */
class ReportUnitTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        DeviceTest::init();
        bios.emplace();
        bios->setBoard("TS77");
        bios->setVersion("4.6.5");
        setUnit("CpuBoard.name"_s, "BQ77"_s);
        folder = std::make_unique<QTemporaryDir>();
    }

    void cleanup()
    {
        bios.reset();
        DeviceTest::cleanup();
    }

    void everyProfile_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("board");
        for (const std::string &profile : virtualunit::profiles()) {
            for (const char *board : {"TS77", "ChiefRiver", "none"})
                QTest::addRow("%s %s", profile.c_str(), board)
                    << QString::fromStdString(profile) << QString::fromLatin1(board);
        }
    }

    void everyProfile()
    {
        QFETCH(QString, profile);
        QFETCH(QString, board);
        bios->setBoard(board.toLatin1());
        useProfile(profile);
        setUnit("CpuBoard.name"_s, board == "TS77"_s ? "BQ77"_s : "CCR6"_s);
        setUnit("CpuBoard.productRevision"_s, "C7"_s);
        pin();
        comesBack();
        setUnit("Battery.chargingStatus"_s, "2"_s);
        comesBack();
    }

    /** VORN_SEEDS in the environment takes more of them. */
    void randomUnits()
    {
        const int count = qMax(100, qEnvironmentVariableIntValue("VORN_SEEDS"));
        for (int seed = 0; seed < count; ++seed) {
            QRandomGenerator random{quint32(seed)};
            useProfile("full"_s);
            setUnit("CpuBoard.name"_s, "BQ77"_s);
            randomise(random);
            comesBack();
            if (QTest::currentTestFailed())
                QFAIL(qPrintable("seed "_s + QString::number(seed)));
            takeWarnings();
        }
    }

    /** What isn't told stays that of a fresh unit, and is listed. */
    void untoldValues()
    {
        fault("Buzzer_getVolume"_s, 14);
        setUnit("Battery.chargingStatus"_s, "0"_s);
        const QString name = write(generateSystemReport().toLatin1());
        const QByteArrayList untold = tool({"unit"_s, "--untold"_s, name}).split('\n');
        for (const char *value : {"Buzzer.volume", "Battery.hwErrorStatus", "Battery.serialNumber"})
            QVERIFY2(untold.contains(value), value);
        QVERIFY(!untold.contains("Buzzer.frequency"));
        for (const char *value :
            {"LightSensor.illuminance", "Gsm.pin", "Can.baudrate5", "DigIO.digIO"})
            QVERIFY2(untold.contains(value), value);
        QVERIFY(!untold.contains("Feature.storage"));
        std::vector<virtualunit::Value> values;
        QCOMPARE(virtualunit::list(values), std::string());
        for (const QByteArray &value : untold) {
            const auto isThis = [&](const auto &known) {
                return known.name == value.toStdString();
            };
            QVERIFY2(value.isEmpty() || std::any_of(values.begin(), values.end(), isThis),
                value.constData());
        }
        const auto profile = QJsonDocument::fromJson(tool({"unit"_s, name})).object();
        QCOMPARE(profile["faults"_s].toObject(), (QJsonObject{{"Buzzer_getVolume"_s, 14}}));
        QVERIFY(!profile["values"_s].toObject().contains("Buzzer.volume"_s));
        for (const QString &value : profile["values"_s].toObject().keys())
            QVERIFY2(!untold.contains(value.toLatin1()), qPrintable(value));
        QCOMPARE(profile["values"_s].toObject()["Buzzer.frequency"_s].toInt(), 2400);
    }

    void impossibleValues_data()
    {
        QTest::addColumn<QByteArray>("label"); // the line's beginning
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("untold");
        const auto row = [](const char *label, const QByteArray &value, const char *untold) {
            QTest::addRow("%s%s", label, value.left(20).constData())
                << QByteArray(label) << value << QByteArray(untold);
        };
        row("FPGA: ", "unknown", "Versions.fpga");
        row("FPGA: ", "v1.2.3", "Versions.fpga");
        row("FPGA: ", "v1.2.3.300", "Versions.fpga");
        row("FPGA: ", "vv1.2.3.4", "Versions.fpga");
        row("FPGA: ", "v1.2.3.4.5", "Versions.fpga");
        row("FPGA: ", "v1..3.4", "Versions.fpga");
        row("Battery SW version: ", "70000.1.1.1", "Battery.swVersion");
        row("Number of power cycles: ", "99999999 ", "Diagnostics.powerCycles");
        row("Number of power cycles: ", "1e999 ", "Diagnostics.powerCycles");
        row("Number of power cycles: ", "1e300 ", "Diagnostics.powerCycles");
        row("Number of CAN connections: ", "1e30", "");
        row("CAN1 Baud rate: ", "12345.5", "Can.baudrate1");
        row("Estimated remaining lifetime: ", "300 %", "Smart.remainingLifetime");
        row("JIDA CPU temp: ", "99999 \260C", "Diagnostics.pmTemp0");
        row("FrontBtnTrigTime: ", "-5", "Config.frontBtnTrigTime");
        row("HeatingTempLimit: ", "-40000", "Config.heatingTempLimit");
        row("ExtOnOffSigTrigTime: ", "-5000000000", "Config.extOnOffSigTrigTime");
        row("Device was initially timestamped on: ", "Fri Nov 4 05:06:07 99999",
            "Smart.initialTime");
        row("Voltage 12V: ", "1e9 V", "Adc.voltage2");
        row("Unit serial number: ", QByteArray("a\0b ", 4), "Hardware.unitSerialNumber");
        row("Unit serial number: ", QByteArray(200, '\344') + " ", "Hardware.unitSerialNumber");
        row("Unit serial number: ", "a\1\x1b\x7f\x80 ", "");
    }

    /** What a unit can't hold is untold, and doesn't cost all that it can. */
    void impossibleValues()
    {
        QFETCH(QByteArray, label);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, untold);
        setUnit("Battery.chargingStatus"_s, "1"_s);
        setUnit("Buzzer.frequency"_s, "1234"_s);
        QByteArray report = generateSystemReport().toLatin1();
        const auto start = report.indexOf('\n' + label) + 1 + label.size();
        QVERIFY(start > label.size());
        report.replace(start, report.indexOf('\n', start) - start, value);
        const QString name = write(report);
        const QByteArray made = tool({"unit"_s, name});
        QFile profile(folder->filePath("unit.json"_s));
        QVERIFY(profile.open(QIODevice::WriteOnly));
        profile.write(made);
        profile.close();
        QCOMPARE(virtualunit::loadProfile(profile.fileName().toStdString()), std::string());
        QCOMPARE(unit("Buzzer.frequency"_s), "1234"_s);
        const QByteArrayList missing = tool({"unit"_s, "--untold"_s, name}).split('\n');
        QVERIFY(untold.isEmpty() || missing.contains(untold));
        QVERIFY(untold.isEmpty() || !made.contains('"' + untold + '"'));
    }

    void tellsTrouble()
    {
        QProcess process;
        process.start(VORN_BIN_DIR "/vornreport"_s, {"unit"_s, folder->filePath("none"_s)});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 2);
        QVERIFY(process.readAllStandardError().contains("there is no such file"));
        const QByteArray report = generateSystemReport().toLatin1();
        process.start(VORN_BIN_DIR "/vornreport"_s,
            {"unit"_s, write(report.left(report.indexOf("Voltage 5V: ")))});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        QVERIFY(process.readAllStandardError().contains("is not complete"));
        // What was cut off is not absent.
        QVERIFY(!process.readAllStandardOutput().contains("faults"));
    }

private:
    /** Unit, report, unit, report: the same. */
    void comesBack()
    {
        const QByteArray report = generateSystemReport().toLatin1();
        const QString name = write(report);
        const auto made = reports::unitProfile(reports::Report({name.toStdString(), {}}));
        QFile profile(folder->filePath("unit.json"_s));
        QVERIFY(profile.open(QIODevice::WriteOnly));
        profile.write(made.json.c_str());
        profile.close();
        QCOMPARE(virtualunit::loadProfile(profile.fileName().toStdString()), std::string());
        const QByteArray again = generateSystemReport().toLatin1();
        if (undated(again) != undated(report)) {
            const auto first = undated(report);
            const auto second = undated(again);
            for (const QByteArray &line : first) {
                if (!second.contains(line))
                    qWarning("lost: %s", line.constData());
            }
            for (const QByteArray &line : second) {
                if (!first.contains(line))
                    qWarning("came: %s", line.constData());
            }
        }
        QCOMPARE(undated(again), undated(report));
    }

    void randomise(QRandomGenerator &random)
    {
        static const QRegularExpression kept(
            "^(Unit|Gsm|Gps|Firmware|CpuBoard|Settings|DigIO|LightSensor)\\."_s);
        std::vector<virtualunit::Value> values;
        QCOMPARE(virtualunit::list(values), std::string());
        for (const auto &value : values) {
            if (QString::fromStdString(value.name).contains(kept))
                continue;
            const QString chosen = randomValue(random, value);
            setUnit(QString::fromStdString(value.name), chosen);
        }
        // A module with more sensors than can be set one by one repeats the last.
        setUnit("Diagnostics.pmSensorCount"_s, QString::number(random.bounded(12)));
        for (const std::string &operation : virtualunit::operations()) {
            constexpr int codes[] = {2, 18, 14, -7, 65538};
            if (random.bounded(12) == 0)
                fault(QString::fromStdString(operation), codes[random.bounded(5)]);
        }
    }

    QString randomValue(QRandomGenerator &random, const virtualunit::Value &value)
    {
        const QString name = QString::fromStdString(value.name);
        const QString range = QString::fromStdString(value.range);
        if (range.startsWith("true"_s))
            return random.bounded(5) == 0 ? "false"_s : "true"_s;
        if (range.startsWith("at most"_s))
            return randomText(random);
        if (range.startsWith("four"_s))
            return "%1.%2.%3.%4"_s.arg(random.bounded(256))
                .arg(random.bounded(256))
                .arg(random.bounded(256))
                .arg(random.bounded(256));
        static const QRegularExpression numbers("^(\\S+) to ([-+.e0-9]+)"_s);
        const auto match = numbers.match(range);
        double low = match.captured(1).toDouble();
        double high = match.captured(2).toDouble();
        if (low == INT32_MIN) { // an enumeration
            low = -2;
            high = 8;
        }
        if (name.contains("initialTime"_s))
            low = 0;
        high = qMin(high, 4e9);
        const double number = low + random.generateDouble() * (high - low);
        const bool whole = !name.startsWith("Adc."_s) && !name.contains("Voltage"_s) &&
                           !name.contains("kValue"_s) && name != "FrontLED.frequency"_s;
        if (name.contains("Count"_s) && random.bounded(3) > 0)
            return QString::number(random.bounded(5));
        return whole ? QString::number(qRound64(number))
                     : QString::number(number, 'g', random.bounded(1, 12));
    }

    /** Living values would move between two reports. */
    void pin()
    {
        std::vector<virtualunit::Value> values;
        QCOMPARE(virtualunit::list(values), std::string());
        for (const auto &value : values) {
            if (value.range.find("or live") != std::string::npos)
                QCOMPARE(virtualunit::set(value.name, value.value), std::string());
        }
    }

    QString write(const QByteArray &report) const
    {
        QFile file(folder->filePath("report.txt"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(report) != report.size())
            qFatal("%s", qPrintable(file.errorString()));
        return file.fileName();
    }

    /** What vornreport prints. */
    static QByteArray tool(const QStringList &arguments)
    {
        QProcess process;
        process.start(VORN_BIN_DIR "/vornreport"_s, arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            qFatal("vornreport: %s", process.readAllStandardError().constData());
        return process.readAllStandardOutput();
    }

    std::optional<BiosData> bios;
    std::unique_ptr<QTemporaryDir> folder;
};

VORN_TEST_MAIN(ReportUnitTest)
#include "tst_reportunit.moc"
