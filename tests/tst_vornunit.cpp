#include "frame/DeviceHandle.h"
#include "tests/support/literals.h"
#include "virtualunit/VirtualUnit.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace support;

namespace {

constexpr int patience = 30'000; // milliseconds

struct Outcome {
    int exitCode = -1;
    QString out;
    QString err;
};

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '));
}

} // namespace

/** The command line tool, started as a user starts it. */
class VornunitTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
        environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VORN_UNIT"_s, path("unit.sqlite"));
        environment.remove("VORN_JOURNAL"_s);
        QCOMPARE(virtualunit::open(path("unit.sqlite").toStdString()), std::string());
    }

    void helps()
    {
        const auto help = run("--help");
        QCOMPARE(help.exitCode, 0);
        QCOMPARE(help.err, QString());
        for (const char *command : {"init", "list", "get", "set", "fault", "delay", "journal",
                 "profile", "profiles", "watch", "operations", "faults", "lines", "sms"}) {
            QVERIFY2(help.out.contains("\n  "_s + QLatin1String(command)), command);
            const auto own = run({QLatin1String(command), "--help"_s});
            QCOMPARE(own.exitCode, 0);
            QVERIFY2(own.out.contains("Usage: vornunit "_s + QLatin1String(command)),
                qPrintable(own.out));
        }
        QVERIFY(help.out.contains("--unit"_s));
        QVERIFY(help.out.contains("Exit codes"_s));
    }

    void refusesWrongUsage_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::newRow("nothing") << QString();
        for (const char *arguments : {"dance", "init", "get", "get --json", "watch",
                 "set Buzzer.volume", "set Buzzer.volume 1 2", "fault", "fault Buzzer_getVolume",
                 "fault Buzzer_getVolume x", "fault Buzzer_getVolume 5 --times -1",
                 "fault Buzzer_getVolume 5 --after x", "fault Buzzer_getVolume 5 --clear",
                 "fault --clear --times 2", "fault Buzzer_getVolume 99999999999",
                 "delay Buzzer_getVolume", "delay Buzzer_getVolume -1", "list --all", "list a b",
                 "operations a b", "faults extra", "profiles extra", "sms extra", "journal extra",
                 "profile extra", "--unit"})
            QTest::newRow(arguments) << QString::fromLatin1(arguments);
    }

    void refusesWrongUsage()
    {
        QFETCH(QString, arguments);
        const auto outcome = run(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
        QCOMPARE(outcome.exitCode, 2);
        QCOMPARE(outcome.out, QString());
        QVERIFY2(outcome.err.startsWith("vornunit: "_s), qPrintable(outcome.err));
        QCOMPARE(outcome.err.count(QLatin1Char('\n')), 1);
    }

    void namesWhatWasMeant_data()
    {
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *arguments, int exitCode, const char *message) {
            QTest::newRow(arguments) << exitCode << QString::fromLatin1(message);
        };
        row("foo", 2, "There is no command \"foo\"; see \"vornunit --help\"");
        row("lists", 2, "There is no command \"lists\"; did you mean \"list\"?");
        row("Profile", 2, "There is no command \"Profile\"; did you mean \"profile\"?");
        row("list --jsno", 2, "There is no option \"--jsno\"; did you mean \"--json\"?");
        row("get --unti x", 2, "There is no option \"--unti\"; did you mean \"--unit\"?");
        row("profile extra", 2, "\"extra\" is too much for \"profile\"; see \"vornunit --help\"");
        row("get backlight.intensity", 1,
            "There is no value \"backlight.intensity\"; did you mean \"Backlight.intensity\"?");
        row("get Buzzer.volume Buzer.frequency", 1,
            "There is no value \"Buzer.frequency\"; did you mean \"Buzzer.frequency\"?");
        row("get nonsense", 1, "There is no value \"nonsense\"");
        row("set Buzzer.volmue 3", 1,
            "There is no value \"Buzzer.volmue\"; did you mean \"Buzzer.volume\"?");
        row("watch buzzer.volume", 1,
            "There is no value \"buzzer.volume\"; did you mean \"Buzzer.volume\"?");
        row("fault buzzer_getvolume 5", 1,
            "There is no operation \"buzzer_getvolume\"; did you mean \"Buzzer_getVolume\"?");
        row("delay Buzzer_getVolum 5", 1,
            "There is no operation \"Buzzer_getVolum\"; did you mean \"Buzzer_getVolume\"?");
        row("list nonsense", 1, "There is no value with \"nonsense\" in its name");
        row("operations nonsense", 1, "There is no operation with \"nonsense\" in its name");
    }

    void namesWhatWasMeant()
    {
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        const auto outcome = run(QTest::currentDataTag());
        QCOMPARE(outcome.err, "vornunit: "_s + message + QLatin1Char('\n'));
        QCOMPARE(outcome.out, QString());
        QCOMPARE(outcome.exitCode, exitCode);
    }

    void tellsItsVersion()
    {
        const auto outcome = run("--version");
        QVERIFY2(outcome.out.startsWith("vornunit 2.7.2.0 ("_s), qPrintable(outcome.out));
        QCOMPARE(outcome.exitCode, 0);
    }

    void makesEveryProfile()
    {
        const auto names = run("profiles").out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const char *name :
            {"full", "basic", "no-touch", "gps-only", "gsm-only", "old-firmware", "broken"})
            QVERIFY2(names.contains(QLatin1String(name)), name);
        for (const auto &name : names) {
            run("set Buzzer.volume 3");
            run("fault Buzzer_getVolume 13");
            const auto outcome = run({"init"_s, name});
            QCOMPARE(outcome.exitCode, 0);
            QCOMPARE(outcome.out + outcome.err, QString());
        }
        // The profile comes whole, and nothing of the unit before it stays.
        QCOMPARE(run("init basic").exitCode, 0);
        QCOMPARE(run("get Hardware.canCount").out, "2\n"_s);
        QCOMPARE(run("init full").exitCode, 0);
        QCOMPARE(run("get Hardware.canCount").out, "4\n"_s);
        QVERIFY(run("get Buzzer.volume").out != "3\n"_s);
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t volume = 0;
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
    }

    void refusesUnknownProfiles()
    {
        QCOMPARE(run("set Buzzer.volume 3").exitCode, 0);
        QFile bad(path("bad.json"));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("{ \"values\": ");
        bad.close();
        for (const QString &profile :
            {"imaginary"_s, path("none.json"), path("bad.json"), folder->path(), QString()}) {
            const auto outcome = run({"init"_s, profile});
            QCOMPARE(outcome.exitCode, 1);
            QVERIFY(outcome.err.startsWith("vornunit: "_s));
            if (!profile.endsWith("bad.json"_s))
                QVERIFY2(outcome.err.contains(profile), qPrintable(outcome.err));
        }
        QCOMPARE(run("get Buzzer.volume").out, "3\n"_s);
    }

    void saysWhatIsWrongWithAProfile_data()
    {
        QTest::addColumn<QByteArray>("profile");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *profile, const char *message) {
            QTest::newRow(profile) << QByteArray(profile) << QString::fromLatin1(message);
        };
        row("root:x:0", "it is no JSON from line 1 on.");
        row("{\n \"values\": {\n ", "it is no JSON from line 3 on.");
        row("", "it is no JSON from line 1 on.");
        row("[]", "it isn't one JSON object.");
        row("{\"values\": 3}", "the section \"values\" isn't one JSON object.");
        row("{\"faults\": [3]}", "the section \"faults\" isn't one JSON object.");
        row("{\"colours\": {}}", "there is no section \"colours\".");
        row("{\"faults\": {\"Buzzer_getVolume\": \"x\"}}",
            "\"x\" is no whole number from -2147483648 to 2147483647.");
        row("{\"faults\": {\"Buzzer_getVolume\": 18446744073709551615}}",
            "18446744073709551615 is no whole number from -2147483648 to 2147483647.");
        row("{\"faults\": {\"Buzzer_getVolume\": {\"times\": 1}}}",
            "the fault of Buzzer_getVolume has no code.");
        row("{\"faults\": {\"Buzzer_getVolume\": {\"code\": 5, \"time\": 1}}}",
            "the fault of Buzzer_getVolume knows no \"time\".");
        row("{\"delays\": {\"Buzzer_getVolume\": -1}}",
            "-1 is no whole number from 0 to 4294967295.");
        row("{\"delays\": {\"Buzzer_getVolume\": 1.5}}",
            "1.5 is no whole number from 0 to 4294967295.");
    }

    void saysWhatIsWrongWithAProfile()
    {
        QFETCH(QByteArray, profile);
        QFETCH(QString, message);
        QFile file(path("bad.json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(profile);
        file.close();
        const auto outcome = run({"init"_s, file.fileName()});
        QCOMPARE(
            outcome.err, "vornunit: The profile can't be read: "_s + message + QLatin1Char('\n'));
        QCOMPARE(outcome.exitCode, 1);
    }

    void listsAllValues()
    {
        std::vector<virtualunit::Value> properties;
        QCOMPARE(virtualunit::list(properties), std::string());
        QVERIFY(properties.size() > 100);
        const auto outcome = run("list");
        QCOMPARE(outcome.exitCode, 0);
        const auto lines = outcome.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(std::size_t(lines.size()), properties.size());
        for (std::size_t i = 0; i < properties.size(); ++i) {
            const auto &line = lines[int(i)];
            const auto columns = line.split("  "_s, Qt::SkipEmptyParts);
            QCOMPARE(columns[0].trimmed(), QString::fromStdString(properties[i].name));
            QVERIFY2(
                line.contains(QString::fromStdString(properties[i].description)), qPrintable(line));
            QVERIFY2(line.contains(QString::fromStdString(properties[i].range)), qPrintable(line));
        }
        QVERIFY(outcome.out.contains(run("get CpuBoard.ean").out.trimmed()));
    }

    void listsByFilter()
    {
        const auto names = [this](const char *arguments) {
            QStringList found;
            const auto lines = run(arguments).out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            for (const auto &line : lines)
                found << line.section(QLatin1Char(' '), 0, 0);
            return found;
        };
        QCOMPARE(names("list buzzer"), (QStringList{"Feature.buzzer"_s, "Buzzer.frequency"_s,
                                           "Buzzer.volume"_s, "Buzzer.trigger"_s}));
        QCOMPARE(names("operations can_"), (QStringList{"Can_getBaudrate"_s, "Can_setBaudrate"_s,
                                               "Can_getFrameType"_s, "Can_setFrameType"_s}));
        QCOMPARE(std::size_t(names("operations").size()), virtualunit::operations().size());
    }

    void listsFaults()
    {
        QCOMPARE(run("faults").out, QString());
        QCOMPARE(run("faults --json").out, "[]\n"_s);
        run("fault Can_getBaudrate -1");
        run("fault Buzzer_getVolume 13 --times 1 --after 2");
        run("delay Buzzer_getVolume 3");
        run("delay Can_setBaudrate 5");
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t volume = 0;
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
        const auto text = run("faults");
        QCOMPARE(text.exitCode, 0);
        QCOMPARE(text.out, "Buzzer_getVolume  answers 13 to 1 call after 2 good; calls so far: 1\n"
                           "Buzzer_getVolume  takes 3 ms longer\n"
                           "Can_getBaudrate  answers -1\n"
                           "Can_setBaudrate  takes 5 ms longer\n"_s);
        const auto json = QJsonDocument::fromJson(run("faults --json").out.toUtf8()).array();
        QCOMPARE(json.size(), 3);
        QCOMPARE(json[0].toObject(),
            (QJsonObject{{"operation"_s, "Buzzer_getVolume"_s}, {"code"_s, 13}, {"times"_s, 1},
                {"after"_s, 2}, {"seen"_s, 1}, {"delay"_s, 3}}));
        run("fault --clear");
        QCOMPARE(run("faults").out,
            "Buzzer_getVolume  takes 3 ms longer\nCan_setBaudrate  takes 5 ms longer\n"_s);
    }

    void printsJson()
    {
        const auto json = [this](const char *arguments) {
            return QJsonDocument::fromJson(run(arguments).out.toUtf8()).array();
        };
        QCOMPARE(json("list --json buzzer.vol"),
            (QJsonArray{QJsonObject{{"name"_s, "Buzzer.volume"_s}, {"value"_s, "20"_s},
                {"range"_s, "0 to 65535"_s}, {"description"_s, "volume in device steps"_s}}}));
        QCOMPARE(json("get Versions.ss Buzzer.volume --json"),
            (QJsonArray{QJsonObject{{"name"_s, "Versions.ss"_s}, {"value"_s, "2.1.7.3"_s}},
                QJsonObject{{"name"_s, "Buzzer.volume"_s}, {"value"_s, "20"_s}}}));
        QCOMPARE(json("operations buzzer_getv --json"), QJsonArray{"Buzzer_getVolume"_s});
        QCOMPARE(json("profiles --json").size(), int(virtualunit::profiles().size()));
        // Whatever bytes a message has, JSON stays JSON.
        QCOMPARE(virtualunit::addShortMessage("123", "a\xFF\n"), std::string());
        const auto message = json("sms --json")[0].toObject();
        QCOMPARE(message["number"_s].toString(), "123"_s);
        QCOMPARE(message["text"_s].toString(), QString::fromUtf8("a\xEF\xBF\xBD\n"));
    }

    void watches()
    {
        QProcess watcher;
        watcher.setProcessEnvironment(environment);
        watcher.start(
            QStringLiteral(VORN_BIN_DIR "/vornunit"), words("watch Buzzer.volume Unit.running"));
        QVERIFY(watcher.waitForStarted(patience));
        QByteArray seen;
        const auto hasSeen = [&](const QByteArray &text) {
            seen += watcher.readAllStandardOutput();
            return seen == text;
        };
        QTRY_VERIFY_WITH_TIMEOUT(hasSeen("Buzzer.volume  20\nUnit.running  true\n"), patience);
        seen.clear();
        QCOMPARE(run("set Buzzer.volume 21").exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(hasSeen("Buzzer.volume  21\n"), patience);
        QCOMPARE(watcher.state(), QProcess::Running);
        watcher.kill(); // Windows knows no other way
        QVERIFY(watcher.waitForFinished(patience));
    }

    void keepsWhatIsLetLive()
    {
        // Each step is a process of its own, so it lasts only if it is in the file.
        QCOMPARE(run("set Diagnostics.totalHeatTime 100").exitCode, 0);
        QVERIFY(run("profile").out.contains("\"Diagnostics.totalHeatTime\": 100"_s));
        QCOMPARE(run("set Diagnostics.totalHeatTime live").exitCode, 0);
        QVERIFY(run("profile").out.contains("\"Diagnostics.totalHeatTime\": \"live 100\""_s));
        QCOMPARE(run({"set"_s, "Diagnostics.totalHeatTime"_s, "live 7"_s}).exitCode, 0);
        QCOMPARE(run("get Diagnostics.totalHeatTime").out, "7\n"_s);
    }

    void setsAndGets_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("value");
        QTest::newRow("number") << "Buzzer.volume"_s << QStringList{"7"_s};
        QTest::newRow("negative") << "Unit.ambientTemp"_s << QStringList{"-25"_s};
        QTest::newRow("behind dashes") << "Unit.ambientTemp"_s << QStringList{"--"_s, "-26"_s};
        QTest::newRow("real") << "FrontLED.frequency"_s << QStringList{"0.25"_s};
        QTest::newRow("text") << "CpuBoard.name"_s << QStringList{"Board with blanks"_s};
        QTest::newRow("empty text") << "CpuBoard.name"_s << QStringList{QString()};
        QTest::newRow("umlauts") << "CpuBoard.name"_s
                                 << QStringList{QString::fromUtf8("Pr\xC3\xBC"
                                                                  "fling \xC2\xB0")};
        QTest::newRow("text with a dash") << "CpuBoard.name"_s << QStringList{"--"_s, "--help"_s};
    }

    void setsAndGets()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, value);
        const auto outcome = run(QStringList{"set"_s, name} + value);
        QCOMPARE(outcome.out + outcome.err, QString());
        QCOMPARE(outcome.exitCode, 0);
        const auto read = run({"get"_s, name});
        QCOMPARE(read.exitCode, 0);
        QCOMPARE(read.out, value.constLast() + QLatin1Char('\n'));
        std::string seen;
        QCOMPARE(virtualunit::get(name.toStdString(), seen), std::string());
        QCOMPARE(QString::fromStdString(seen), value.constLast());
    }

    void refusesValues_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::newRow("unknown name") << "Buzzer.colour"_s
                                      << "1"_s;
        QTest::newRow("too large") << "Buzzer.volume"_s
                                   << "65536"_s;
        QTest::newRow("negative") << "Buzzer.volume"_s
                                  << "-1"_s;
        QTest::newRow("no number") << "Buzzer.volume"_s
                                   << "loud"_s;
        QTest::newRow("empty") << "Buzzer.volume"_s << QString();
        QTest::newRow("no version") << "Versions.ss"_s
                                    << "1.2"_s;
    }

    void refusesValues()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        const auto before = run({"get"_s, name}).out;
        const auto outcome = run({"set"_s, name, value});
        QCOMPARE(outcome.exitCode, 1);
        QCOMPARE(outcome.out, QString());
        QVERIFY(outcome.err.startsWith("vornunit: "_s));
        QVERIFY2(outcome.err.contains(name), qPrintable(outcome.err));
        const auto after = run({"get"_s, name});
        QCOMPARE(after.out, before);
        QCOMPARE(after.exitCode, before.isEmpty() ? 1 : 0);
    }

    void takesTheUnitFromTheOption()
    {
        const auto other = path("other.sqlite");
        QCOMPARE(run({"--unit"_s, other, "set"_s, "Buzzer.volume"_s, "5"_s}).exitCode, 0);
        QCOMPARE(run("set Buzzer.volume 6").exitCode, 0);
        // On either side of the command.
        QCOMPARE(run({"get"_s, "Buzzer.volume"_s, "--unit"_s, other}).out, "5\n"_s);
        QCOMPARE(run("get Buzzer.volume").out, "6\n"_s);
        const auto outcome = run({"--unit"_s, folder->path(), "list"_s});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.err.startsWith("vornunit: "_s));
    }

    void injectsFaults()
    {
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        const auto codes = [&buzzer](int calls) {
            QList<int> list;
            uint16_t volume = 0;
            for (int i = 0; i < calls; ++i)
                list << Buzzer_getVolume(buzzer, &volume);
            return list;
        };
        QCOMPARE(run("fault Buzzer_getVolume -1").exitCode, 0);
        QCOMPARE(codes(3), (QList<int>{-1, -1, -1}));
        QCOMPARE(run("fault Buzzer_getVolume 18 --times 2 --after 1").exitCode, 0);
        QCOMPARE(codes(5), (QList<int>{0, 18, 18, 0, 0}));
        QCOMPARE(run("fault Buzzer_getVolume 5").exitCode, 0);
        QCOMPARE(run("fault Buzzer_getVolume 0").exitCode, 0);
        QCOMPARE(codes(1), QList<int>{0});
        QCOMPARE(run("fault Buzzer_getVolume 5").exitCode, 0);
        QCOMPARE(run("fault Buzzer_getFrequency 5").exitCode, 0);
        QCOMPARE(run("fault --clear").exitCode, 0);
        uint16_t hertz = 0;
        QCOMPARE(codes(1), QList<int>{0});
        QCOMPARE(Buzzer_getFrequency(buzzer, &hertz), 0);

        const auto outcome = run("fault Buzzer_sing 5");
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY2(outcome.err.contains("Buzzer_sing"_s), qPrintable(outcome.err));
    }

    void delays()
    {
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t volume = 0;
        QElapsedTimer timer;
        QCOMPARE(run("delay Buzzer_getVolume 120").exitCode, 0);
        timer.start();
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
        QVERIFY(timer.elapsed() >= 120);
        QCOMPARE(run("delay Buzzer_getVolume 0").exitCode, 0);
        // On a busy machine a single call may take long all the same.
        qint64 fastest = 1000;
        for (int i = 0; i < 20; ++i) {
            timer.start();
            QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
            fastest = qMin(fastest, timer.elapsed());
        }
        QVERIFY(fastest < 120);
        const auto outcome = run("delay Buzzer_sing 5");
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.err.contains("Buzzer_sing"_s));
    }

    void printsTheUnitAsAProfile()
    {
        run("init basic");
        run("set Buzzer.volume 9");
        run("fault Buzzer_getFrequency 13");
        run("delay Buzzer_getFrequency 1");
        const auto printed = run("profile");
        QCOMPARE(printed.exitCode, 0);
        QFile file(path("mine.json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(printed.out.toUtf8());
        file.close();

        QCOMPARE(run("init full").exitCode, 0);
        QVERIFY(run("profile").out != printed.out);
        QCOMPARE(run({"init"_s, file.fileName()}).err, QString());
        QCOMPARE(run("get Buzzer.volume").out, "9\n"_s);
        QCOMPARE(run("get Hardware.canCount").out, "2\n"_s);
        const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
        uint16_t hertz = 0;
        QCOMPARE(Buzzer_getFrequency(buzzer, &hertz), 13);
    }

    void needsAJournal()
    {
        const auto none = run("journal");
        QCOMPARE(none.exitCode, 1);
        QVERIFY2(none.err.contains("VORN_JOURNAL"_s), qPrintable(none.err));
        const auto missing = run({"journal"_s, "--file"_s, path("none")});
        QCOMPARE(missing.exitCode, 1);
        QVERIFY2(missing.err.contains(path("none")), qPrintable(missing.err));
        QVERIFY(!QFile::exists(path("none")));
    }

    void printsTheJournal()
    {
        writeCalls(2);
        const QStringList byFile{"journal"_s, "--file"_s, path("journal")};
        const auto outcome = run(byFile);
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(outcome.out.split(QLatin1Char('\n')),
            (QStringList{"T1 Settings_create() = #1"_s,
                "T1 Settings_setString(#1, \"key\", \"1\") = 0"_s,
                "T1 Settings_getString(#1, \"key\", 32) = 0 [\"1\"]"_s,
                "T1 Settings_setString(#1, \"key\", \"2\") = 0"_s,
                "T1 Settings_getString(#1, \"key\", 32) = 0 [\"2\"]"_s, "T1 Settings_release(#1)"_s,
                QString()}));
        environment.insert("VORN_JOURNAL"_s, path("journal"));
        QCOMPARE(run("journal").out, outcome.out);

        QCOMPARE(run("journal --clear").out, QString());
        QCOMPARE(QFileInfo(path("journal")).size(), 0);
        QCOMPARE(run("journal").out, QString());
        writeCalls(2);
        QCOMPARE(run("journal").out, outcome.out);
    }

    void followsTheJournal()
    {
        environment.insert("VORN_JOURNAL"_s, path("journal"));
        QProcess follower;
        follower.setProcessEnvironment(environment);
        // Before there is any journal at all.
        follower.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), words("journal --follow"));
        QVERIFY(follower.waitForStarted(patience));
        QByteArray seen;
        const auto hasSeen = [&](const QByteArray &line) {
            seen += follower.readAllStandardOutput();
            return seen.contains(line);
        };
        writeCalls(1);
        QTRY_VERIFY_WITH_TIMEOUT(hasSeen("T1 Settings_release(#1)\n"), patience);
        writeCalls(3);
        QTRY_VERIFY_WITH_TIMEOUT(hasSeen("\"3\"]\nT1 Settings_release(#1)\n"), patience);
        QCOMPARE(seen.count("T1 Settings_create() = #1\n"), 2);

        // An emptied journal goes on from its beginning.
        QCOMPARE(run("journal --clear").exitCode, 0);
        seen.clear();
        writeCalls(1);
        QTRY_VERIFY_WITH_TIMEOUT(hasSeen("T1 Settings_release(#1)\n"), patience);
        QVERIFY(seen.startsWith("T1 Settings_create() = #1\n"));
        QCOMPARE(follower.state(), QProcess::Running);
        follower.kill(); // Windows knows no other way
        QVERIFY(follower.waitForFinished(patience));
    }

private:
    Outcome run(const QStringList &arguments)
    {
        QProcess tool;
        tool.setProcessEnvironment(environment);
        tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), arguments);
        if (!tool.waitForFinished(patience) || tool.exitStatus() != QProcess::NormalExit)
            qFatal("vornunit %s", qPrintable(tool.errorString()));
        return {tool.exitCode(), QString::fromUtf8(tool.readAllStandardOutput()),
            QString::fromUtf8(tool.readAllStandardError())};
    }
    Outcome run(const char *arguments) { return run(words(arguments)); }

    /** Lets another process make so many pairs of calls, with its journal on. */
    void writeCalls(int count)
    {
        auto journalling = environment;
        journalling.insert("VORN_JOURNAL"_s, path("journal"));
        QProcess writer;
        writer.setProcessEnvironment(journalling);
        writer.start(QStringLiteral(VORN_TEST_PROGRAMS "/unitwriter"),
            {"count"_s, "key"_s, QString::number(count)});
        QVERIFY(writer.waitForFinished(patience));
        QCOMPARE(writer.exitCode(), 0);
    }
    QString path(const char *name) const { return folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> folder;
    QProcessEnvironment environment;
};

QTEST_GUILESS_MAIN(VornunitTest)
#include "tst_vornunit.moc"
