#include "tests/support/CheckTest.h"

#include "virtualunit/VirtualUnit.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <vector>

using namespace support;

namespace support {

CheckOutcome ended(QProcess &tool)
{
    if (!tool.waitForFinished(checkPatience) || tool.exitStatus() != QProcess::NormalExit)
        qFatal("vorncheck %s", qPrintable(tool.errorString()));
    return {tool.exitCode(), QString::fromUtf8(tool.readAllStandardOutput()),
        QString::fromUtf8(tool.readAllStandardError())};
}

QJsonObject reportIn(const CheckOutcome &outcome, int exitCode)
{
    if (outcome.exitCode != exitCode || !outcome.err.isEmpty())
        qWarning("exit code %d, %s%s", outcome.exitCode, qPrintable(outcome.err),
            qPrintable(outcome.out));
    return QJsonDocument::fromJson(outcome.out.toUtf8()).object();
}

QStringList findings(const QJsonObject &report)
{
    QStringList found;
    const auto tests = report["tests"_s].toArray();
    for (const auto &value : tests) {
        const auto test = value.toObject();
        const auto result = test["result"_s].toString();
        if (result == "pass"_s || result == "skip"_s)
            continue;
        QStringList sentences;
        const auto told = test["findings"_s].toArray();
        for (const auto &sentence : told)
            sentences << sentence.toString();
        found << result + QLatin1Char(' ') + test["name"_s].toString() + ": "_s +
                     sentences.join("; "_s);
    }
    return found;
}

} // namespace support

CheckOutcome CheckTest::run(const QStringList &arguments) const
{
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.start(VORN_BIN_DIR "/vorncheck"_s, arguments);
    return ended(tool);
}

QJsonObject CheckTest::check(const QStringList &arguments, int exitCode) const
{
    return reportIn(run(QStringList{"--json"_s} + arguments), exitCode);
}

QStringList CheckTest::withoutThreads() const
{
    QStringList tests;
    for (const auto &name : names) {
        if (name != "threads"_s)
            tests << "--only"_s << name;
    }
    return tests;
}

std::map<std::string, std::string> CheckTest::settings()
{
    std::vector<virtualunit::Value> properties;
    if (!virtualunit::list(properties).empty())
        qFatal("the unit can't be read");
    std::map<std::string, std::string> values;
    for (const auto &property : properties) {
        const auto family = QString::fromStdString(property.name).section(QLatin1Char('.'), 0, 0);
        const QStringList settable{"Backlight"_s, "Buzzer"_s, "Can"_s, "Config"_s, "DigIO"_s,
            "FrontLED"_s, "Power"_s, "Telematics"_s, "Touch"_s};
        if (settable.contains(family))
            values[property.name] = property.value;
    }
    return values;
}

void CheckTest::startWriting(QProcess &tool) const
{
    const auto before = settings();
    // Slow enough to be seen amid the volumes.
    QCOMPARE(virtualunit::setDelay("Buzzer_setVolume", 300), std::string());
    tool.setProcessEnvironment(environment);
    tool.start(VORN_BIN_DIR "/vorncheck"_s,
        {"--write"_s, "--only"_s, "write-values"_s, QStringLiteral(VORN_DEVICE_LIBRARY)});
    QVERIFY(tool.waitForStarted(checkPatience));
    QTRY_VERIFY_WITH_TIMEOUT(
        settings().at("Buzzer.volume") != before.at("Buzzer.volume"), checkPatience);
}

void CheckTest::initTestCase()
{
    environment = QProcessEnvironment::systemEnvironment();
    const auto list = run({"--list"_s}).out.trimmed().split(QLatin1Char('\n'));
    for (const auto &line : list)
        names << line.section(QLatin1Char(' '), 0, 0);
}

void CheckTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    const QString unit = folder->filePath("unit.sqlite"_s);
    environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VORN_UNIT"_s, unit);
    environment.insert("BROKENUNIT_STORE"_s, folder->path());
    environment.remove("VORN_JOURNAL"_s);
    QCOMPARE(virtualunit::open(unit.toStdString()), std::string());
}
