#include "frame/DeviceHandle.h"
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
    void init();
    void helps();
    void refusesWrongUsage_data();
    void refusesWrongUsage();
    void namesWhatWasMeant_data();
    void namesWhatWasMeant();
    void tellsItsVersion();
    void makesEveryProfile();
    void refusesUnknownProfiles();
    void saysWhatIsWrongWithAProfile_data();
    void saysWhatIsWrongWithAProfile();
    void listsAllValues();
    void listsByFilter();
    void listsFaults();
    void printsJson();
    void watches();
    void keepsWhatIsLetLive();
    void setsAndGets_data();
    void setsAndGets();
    void refusesValues_data();
    void refusesValues();
    void takesTheUnitFromTheOption();
    void injectsFaults();
    void delays();
    void printsTheUnitAsAProfile();
    void needsAJournal();
    void printsTheJournal();
    void followsTheJournal();

private:
    Outcome run(const QStringList &arguments);
    Outcome run(const char *arguments) { return run(words(arguments)); }
    void writeCalls(int count);
    QString path(const char *name) const { return folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> folder;
    QProcessEnvironment environment;
};

void VornunitTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VORN_UNIT"), path("unit.sqlite"));
    environment.remove(QStringLiteral("VORN_JOURNAL"));
    QCOMPARE(virtualunit::open(path("unit.sqlite").toStdString()), std::string());
}

Outcome VornunitTest::run(const QStringList &arguments)
{
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), arguments);
    if (!tool.waitForFinished(patience) || tool.exitStatus() != QProcess::NormalExit)
        qFatal("vornunit %s", qPrintable(tool.errorString()));
    return {tool.exitCode(), QString::fromUtf8(tool.readAllStandardOutput()),
        QString::fromUtf8(tool.readAllStandardError())};
}

/// Lets another process make so many pairs of calls, with its journal on.
void VornunitTest::writeCalls(int count)
{
    auto journalling = environment;
    journalling.insert(QStringLiteral("VORN_JOURNAL"), path("journal"));
    QProcess writer;
    writer.setProcessEnvironment(journalling);
    writer.start(QStringLiteral(VORN_TEST_PROGRAMS "/unitwriter"),
        {QStringLiteral("count"), QStringLiteral("key"), QString::number(count)});
    QVERIFY(writer.waitForFinished(patience));
    QCOMPARE(writer.exitCode(), 0);
}

void VornunitTest::helps()
{
    const auto help = run("--help");
    QCOMPARE(help.exitCode, 0);
    QCOMPARE(help.err, QString());
    for (const char *command : {"init", "list", "get", "set", "fault", "delay", "journal",
             "profile", "profiles", "watch", "operations", "faults", "lines", "sms"}) {
        QVERIFY2(help.out.contains(QLatin1String("\n  ") + QLatin1String(command)), command);
        const auto own = run({QLatin1String(command), QStringLiteral("--help")});
        QCOMPARE(own.exitCode, 0);
        QVERIFY2(own.out.contains(QLatin1String("Usage: vornunit ") + QLatin1String(command)),
            qPrintable(own.out));
    }
    QVERIFY(help.out.contains(QStringLiteral("--unit")));
    QVERIFY(help.out.contains(QStringLiteral("Exit codes")));
}

void VornunitTest::refusesWrongUsage_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("nothing") << QString();
    for (const char *arguments :
        {"dance", "init", "get", "get --json", "watch", "set Buzzer.volume",
            "set Buzzer.volume 1 2", "fault", "fault Buzzer_getVolume", "fault Buzzer_getVolume x",
            "fault Buzzer_getVolume 5 --times -1", "fault Buzzer_getVolume 5 --after x",
            "fault Buzzer_getVolume 5 --clear", "fault --clear --times 2",
            "fault Buzzer_getVolume 99999999999", "delay Buzzer_getVolume",
            "delay Buzzer_getVolume -1", "list --all", "list a b", "operations a b", "faults extra",
            "profiles extra", "sms extra", "journal extra", "profile extra", "--unit"})
        QTest::newRow(arguments) << QString::fromLatin1(arguments);
}

void VornunitTest::refusesWrongUsage()
{
    QFETCH(QString, arguments);
    const auto outcome = run(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.out, QString());
    QVERIFY2(outcome.err.startsWith(QStringLiteral("vornunit: ")), qPrintable(outcome.err));
    QCOMPARE(outcome.err.count(QLatin1Char('\n')), 1);
}

void VornunitTest::namesWhatWasMeant_data()
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

void VornunitTest::namesWhatWasMeant()
{
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const auto outcome = run(QTest::currentDataTag());
    QCOMPARE(outcome.err, QStringLiteral("vornunit: ") + message + QLatin1Char('\n'));
    QCOMPARE(outcome.out, QString());
    QCOMPARE(outcome.exitCode, exitCode);
}

void VornunitTest::tellsItsVersion()
{
    const auto outcome = run("--version");
    QCOMPARE(outcome.out, QStringLiteral("vornunit 2.7.2.0\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void VornunitTest::makesEveryProfile()
{
    const auto names = run("profiles").out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const char *name :
        {"full", "basic", "no-touch", "gps-only", "gsm-only", "old-firmware", "broken"})
        QVERIFY2(names.contains(QLatin1String(name)), name);
    for (const auto &name : names) {
        run("set Buzzer.volume 3");
        run("fault Buzzer_getVolume 13");
        const auto outcome = run({QStringLiteral("init"), name});
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(outcome.out + outcome.err, QString());
    }
    // The profile comes whole, and nothing of the unit before it stays.
    QCOMPARE(run("init basic").exitCode, 0);
    QCOMPARE(run("get Hardware.canCount").out, QStringLiteral("2\n"));
    QCOMPARE(run("init full").exitCode, 0);
    QCOMPARE(run("get Hardware.canCount").out, QStringLiteral("4\n"));
    QVERIFY(run("get Buzzer.volume").out != QStringLiteral("3\n"));
    const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
    uint16_t volume = 0;
    QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
}

void VornunitTest::refusesUnknownProfiles()
{
    QCOMPARE(run("set Buzzer.volume 3").exitCode, 0);
    QFile bad(path("bad.json"));
    QVERIFY(bad.open(QIODevice::WriteOnly));
    bad.write("{ \"values\": ");
    bad.close();
    for (const QString &profile : {QStringLiteral("imaginary"), path("none.json"), path("bad.json"),
             folder->path(), QString()}) {
        const auto outcome = run({QStringLiteral("init"), profile});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.err.startsWith(QStringLiteral("vornunit: ")));
        if (!profile.endsWith(QLatin1String("bad.json")))
            QVERIFY2(outcome.err.contains(profile), qPrintable(outcome.err));
    }
    QCOMPARE(run("get Buzzer.volume").out, QStringLiteral("3\n"));
}

void VornunitTest::saysWhatIsWrongWithAProfile_data()
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
    row("{\"delays\": {\"Buzzer_getVolume\": -1}}", "-1 is no whole number from 0 to 4294967295.");
    row("{\"delays\": {\"Buzzer_getVolume\": 1.5}}",
        "1.5 is no whole number from 0 to 4294967295.");
}

void VornunitTest::saysWhatIsWrongWithAProfile()
{
    QFETCH(QByteArray, profile);
    QFETCH(QString, message);
    QFile file(path("bad.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(profile);
    file.close();
    const auto outcome = run({QStringLiteral("init"), file.fileName()});
    QCOMPARE(outcome.err,
        QStringLiteral("vornunit: The profile can't be read: ") + message + QLatin1Char('\n'));
    QCOMPARE(outcome.exitCode, 1);
}

void VornunitTest::listsAllValues()
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
        const auto columns = line.split(QStringLiteral("  "), Qt::SkipEmptyParts);
        QCOMPARE(columns[0].trimmed(), QString::fromStdString(properties[i].name));
        QVERIFY2(
            line.contains(QString::fromStdString(properties[i].description)), qPrintable(line));
        QVERIFY2(line.contains(QString::fromStdString(properties[i].range)), qPrintable(line));
    }
    QVERIFY(outcome.out.contains(run("get CpuBoard.ean").out.trimmed()));
}

void VornunitTest::listsByFilter()
{
    const auto names = [this](const char *arguments) {
        QStringList found;
        const auto lines = run(arguments).out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const auto &line : lines)
            found << line.section(QLatin1Char(' '), 0, 0);
        return found;
    };
    QCOMPARE(names("list buzzer"),
        (QStringList{QStringLiteral("Feature.buzzer"), QStringLiteral("Buzzer.frequency"),
            QStringLiteral("Buzzer.volume"), QStringLiteral("Buzzer.trigger")}));
    QCOMPARE(names("operations can_"),
        (QStringList{QStringLiteral("Can_getBaudrate"), QStringLiteral("Can_setBaudrate"),
            QStringLiteral("Can_getFrameType"), QStringLiteral("Can_setFrameType")}));
    QCOMPARE(std::size_t(names("operations").size()), virtualunit::operations().size());
}

void VornunitTest::listsFaults()
{
    QCOMPARE(run("faults").out, QString());
    QCOMPARE(run("faults --json").out, QStringLiteral("[]\n"));
    run("fault Can_getBaudrate -1");
    run("fault Buzzer_getVolume 13 --times 1 --after 2");
    run("delay Buzzer_getVolume 3");
    run("delay Can_setBaudrate 5");
    const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
    uint16_t volume = 0;
    QCOMPARE(Buzzer_getVolume(buzzer, &volume), 0);
    const auto text = run("faults");
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(text.out,
        QStringLiteral("Buzzer_getVolume  answers 13 to 1 call after 2 good; calls so far: 1\n"
                       "Buzzer_getVolume  takes 3 ms longer\n"
                       "Can_getBaudrate  answers -1\n"
                       "Can_setBaudrate  takes 5 ms longer\n"));
    const auto json = QJsonDocument::fromJson(run("faults --json").out.toUtf8()).array();
    QCOMPARE(json.size(), 3);
    QCOMPARE(json[0].toObject(),
        (QJsonObject{{QStringLiteral("operation"), QStringLiteral("Buzzer_getVolume")},
            {QStringLiteral("code"), 13}, {QStringLiteral("times"), 1},
            {QStringLiteral("after"), 2}, {QStringLiteral("seen"), 1},
            {QStringLiteral("delay"), 3}}));
    run("fault --clear");
    QCOMPARE(run("faults").out,
        QStringLiteral(
            "Buzzer_getVolume  takes 3 ms longer\nCan_setBaudrate  takes 5 ms longer\n"));
}

void VornunitTest::printsJson()
{
    const auto json = [this](const char *arguments) {
        return QJsonDocument::fromJson(run(arguments).out.toUtf8()).array();
    };
    QCOMPARE(json("list --json buzzer.vol"),
        (QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("Buzzer.volume")},
            {QStringLiteral("value"), QStringLiteral("20")},
            {QStringLiteral("range"), QStringLiteral("0 to 65535")},
            {QStringLiteral("description"), QStringLiteral("volume in device steps")}}}));
    QCOMPARE(json("get Versions.ss Buzzer.volume --json"),
        (QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("Versions.ss")},
                        {QStringLiteral("value"), QStringLiteral("2.1.7.3")}},
            QJsonObject{{QStringLiteral("name"), QStringLiteral("Buzzer.volume")},
                {QStringLiteral("value"), QStringLiteral("20")}}}));
    QCOMPARE(json("operations buzzer_getv --json"), QJsonArray{QStringLiteral("Buzzer_getVolume")});
    QCOMPARE(json("profiles --json").size(), int(virtualunit::profiles().size()));
    // Whatever bytes a message has, JSON stays JSON.
    QCOMPARE(virtualunit::addShortMessage("123", "a\xFF\n"), std::string());
    const auto message = json("sms --json")[0].toObject();
    QCOMPARE(message[QStringLiteral("number")].toString(), QStringLiteral("123"));
    QCOMPARE(message[QStringLiteral("text")].toString(), QString::fromUtf8("a\xEF\xBF\xBD\n"));
}

void VornunitTest::watches()
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

void VornunitTest::keepsWhatIsLetLive()
{
    // Each step is a process of its own, so it lasts only if it is in the file.
    QCOMPARE(run("set Diagnostics.totalHeatTime 100").exitCode, 0);
    QVERIFY(run("profile").out.contains(QStringLiteral("\"Diagnostics.totalHeatTime\": 100")));
    QCOMPARE(run("set Diagnostics.totalHeatTime live").exitCode, 0);
    QVERIFY(
        run("profile").out.contains(QStringLiteral("\"Diagnostics.totalHeatTime\": \"live 100\"")));
    QCOMPARE(run({QStringLiteral("set"), QStringLiteral("Diagnostics.totalHeatTime"),
                     QStringLiteral("live 7")})
                 .exitCode,
        0);
    QCOMPARE(run("get Diagnostics.totalHeatTime").out, QStringLiteral("7\n"));
}

void VornunitTest::setsAndGets_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("value");
    QTest::newRow("number") << QStringLiteral("Buzzer.volume") << QStringList{QStringLiteral("7")};
    QTest::newRow("negative") << QStringLiteral("Unit.ambientTemp")
                              << QStringList{QStringLiteral("-25")};
    QTest::newRow("behind dashes") << QStringLiteral("Unit.ambientTemp")
                                   << QStringList{QStringLiteral("--"), QStringLiteral("-26")};
    QTest::newRow("real") << QStringLiteral("FrontLED.frequency")
                          << QStringList{QStringLiteral("0.25")};
    QTest::newRow("text") << QStringLiteral("CpuBoard.name")
                          << QStringList{QStringLiteral("Board with blanks")};
    QTest::newRow("empty text") << QStringLiteral("CpuBoard.name") << QStringList{QString()};
    QTest::newRow("umlauts") << QStringLiteral("CpuBoard.name")
                             << QStringList{QString::fromUtf8("Pr\xC3\xBC"
                                                              "fling \xC2\xB0")};
    QTest::newRow("text with a dash")
        << QStringLiteral("CpuBoard.name")
        << QStringList{QStringLiteral("--"), QStringLiteral("--help")};
}

void VornunitTest::setsAndGets()
{
    QFETCH(QString, name);
    QFETCH(QStringList, value);
    const auto outcome = run(QStringList{QStringLiteral("set"), name} + value);
    QCOMPARE(outcome.out + outcome.err, QString());
    QCOMPARE(outcome.exitCode, 0);
    const auto read = run({QStringLiteral("get"), name});
    QCOMPARE(read.exitCode, 0);
    QCOMPARE(read.out, value.constLast() + QLatin1Char('\n'));
    std::string seen;
    QCOMPARE(virtualunit::get(name.toStdString(), seen), std::string());
    QCOMPARE(QString::fromStdString(seen), value.constLast());
}

void VornunitTest::refusesValues_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("unknown name") << QStringLiteral("Buzzer.colour") << QStringLiteral("1");
    QTest::newRow("too large") << QStringLiteral("Buzzer.volume") << QStringLiteral("65536");
    QTest::newRow("negative") << QStringLiteral("Buzzer.volume") << QStringLiteral("-1");
    QTest::newRow("no number") << QStringLiteral("Buzzer.volume") << QStringLiteral("loud");
    QTest::newRow("empty") << QStringLiteral("Buzzer.volume") << QString();
    QTest::newRow("no version") << QStringLiteral("Versions.ss") << QStringLiteral("1.2");
}

void VornunitTest::refusesValues()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    const auto before = run({QStringLiteral("get"), name}).out;
    const auto outcome = run({QStringLiteral("set"), name, value});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.out, QString());
    QVERIFY(outcome.err.startsWith(QStringLiteral("vornunit: ")));
    QVERIFY2(outcome.err.contains(name), qPrintable(outcome.err));
    const auto after = run({QStringLiteral("get"), name});
    QCOMPARE(after.out, before);
    QCOMPARE(after.exitCode, before.isEmpty() ? 1 : 0);
}

void VornunitTest::takesTheUnitFromTheOption()
{
    const auto other = path("other.sqlite");
    QCOMPARE(run({QStringLiteral("--unit"), other, QStringLiteral("set"),
                     QStringLiteral("Buzzer.volume"), QStringLiteral("5")})
                 .exitCode,
        0);
    QCOMPARE(run("set Buzzer.volume 6").exitCode, 0);
    // On either side of the command.
    QCOMPARE(run({QStringLiteral("get"), QStringLiteral("Buzzer.volume"), QStringLiteral("--unit"),
                     other})
                 .out,
        QStringLiteral("5\n"));
    QCOMPARE(run("get Buzzer.volume").out, QStringLiteral("6\n"));
    const auto outcome = run({QStringLiteral("--unit"), folder->path(), QStringLiteral("list")});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY(outcome.err.startsWith(QStringLiteral("vornunit: ")));
}

void VornunitTest::injectsFaults()
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
    QVERIFY2(outcome.err.contains(QStringLiteral("Buzzer_sing")), qPrintable(outcome.err));
}

void VornunitTest::delays()
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
    QVERIFY(outcome.err.contains(QStringLiteral("Buzzer_sing")));
}

void VornunitTest::printsTheUnitAsAProfile()
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
    QCOMPARE(run({QStringLiteral("init"), file.fileName()}).err, QString());
    QCOMPARE(run("get Buzzer.volume").out, QStringLiteral("9\n"));
    QCOMPARE(run("get Hardware.canCount").out, QStringLiteral("2\n"));
    const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
    uint16_t hertz = 0;
    QCOMPARE(Buzzer_getFrequency(buzzer, &hertz), 13);
}

void VornunitTest::needsAJournal()
{
    const auto none = run("journal");
    QCOMPARE(none.exitCode, 1);
    QVERIFY2(none.err.contains(QStringLiteral("VORN_JOURNAL")), qPrintable(none.err));
    const auto missing = run({QStringLiteral("journal"), QStringLiteral("--file"), path("none")});
    QCOMPARE(missing.exitCode, 1);
    QVERIFY2(missing.err.contains(path("none")), qPrintable(missing.err));
    QVERIFY(!QFile::exists(path("none")));
}

void VornunitTest::printsTheJournal()
{
    writeCalls(2);
    const QStringList byFile{QStringLiteral("journal"), QStringLiteral("--file"), path("journal")};
    const auto outcome = run(byFile);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.out.split(QLatin1Char('\n')),
        (QStringList{QStringLiteral("T1 Settings_create() = #1"),
            QStringLiteral("T1 Settings_setString(#1, \"key\", \"1\") = 0"),
            QStringLiteral("T1 Settings_getString(#1, \"key\", 32) = 0 [\"1\"]"),
            QStringLiteral("T1 Settings_setString(#1, \"key\", \"2\") = 0"),
            QStringLiteral("T1 Settings_getString(#1, \"key\", 32) = 0 [\"2\"]"),
            QStringLiteral("T1 Settings_release(#1)"), QString()}));
    environment.insert(QStringLiteral("VORN_JOURNAL"), path("journal"));
    QCOMPARE(run("journal").out, outcome.out);

    QCOMPARE(run("journal --clear").out, QString());
    QCOMPARE(QFileInfo(path("journal")).size(), 0);
    QCOMPARE(run("journal").out, QString());
    writeCalls(2);
    QCOMPARE(run("journal").out, outcome.out);
}

void VornunitTest::followsTheJournal()
{
    environment.insert(QStringLiteral("VORN_JOURNAL"), path("journal"));
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

QTEST_GUILESS_MAIN(VornunitTest)
#include "tst_vornunit.moc"
