#include "tests/support/LinuxUnit_posix.h"
#include "tests/support/literals.h"

#include <QFile>
#include <QtTest>

#include <set>

using support::LinuxUnit;
using support::operator""_s;

namespace {

/** The kind of a code: what its number in front, which tells sentences apart, leaves. */
int kindOf(const LinuxUnit::Answer &answer)
{
    return answer.code % 1000;
}

} // namespace

/** The Linux unit on trees of files, in the test's own process. */
class LinuxUnitTest : public QObject
{
    Q_OBJECT

private slots:
    void bareMachineHasNothing();
    void handlesAndPointersAreChecked();
    void stringsStay();
    void stringsNeedAFolder();
};

void LinuxUnitTest::bareMachineHasNothing()
{
    LinuxUnit unit;
    // What the library knows of itself and of the settings that it keeps.
    const std::set<std::string> answered{"Settings_getString", "Settings_setString"};
    for (const auto &operation : contract::operations) {
        if (answered.count(operation.name) > 0)
            continue;
        std::vector<LinuxUnit::Value> given;
        for (const auto &argument : operation.arguments) {
            if (argument.role == contract::Role::In)
                given.emplace_back(0.0);
            else if (argument.role == contract::Role::String)
                given.emplace_back("/nowhere");
        }
        const auto answer = unit.call(operation.name, given);
        QVERIFY2(answer.code == DEVICE_NOT_SUPPORTED,
            qPrintable(QStringLiteral("%1 answered %2: %3")
                           .arg(QLatin1String(operation.name))
                           .arg(answer.code)
                           .arg(QString::fromLatin1(unit.textOf(answer)))));
    }
}

void LinuxUnitTest::handlesAndPointersAreChecked()
{
    LinuxUnit unit;
    const auto get =
        reinterpret_cast<decltype(&Settings_getString)>(unit.function("Settings_getString"));
    const auto create =
        reinterpret_cast<decltype(&Settings_create)>(unit.function("Settings_create"));
    const auto release =
        reinterpret_cast<decltype(&Settings_release)>(unit.function("Settings_release"));
    const auto unmapped = reinterpret_cast<decltype(&Versions_getFPGAVersion)>(
        unit.function("Versions_getFPGAVersion"));
    char buffer[4] = "abc";
    QCOMPARE(get(nullptr, "a", buffer, 4), 3);
    auto *const handle = create();
    QVERIFY(handle);
    QCOMPARE(get(handle, nullptr, buffer, 4), 4);
    QCOMPARE(get(handle, "a", nullptr, 4), 4);
    QCOMPARE(get(handle, "a", buffer, 0), 4);
    QCOMPARE(get(handle, "a", buffer, 4), 26);
    QCOMPARE(
        unmapped(reinterpret_cast<VersionsHandle>(handle), nullptr, nullptr, nullptr, nullptr), 3);
    release(handle);
    QCOMPARE(get(handle, "a", buffer, 4), 3);
    QCOMPARE(buffer, "abc");
}

void LinuxUnitTest::stringsStay()
{
    LinuxUnit unit;
    QCOMPARE(unit.call("Settings_getString", {"Gsm"}).code, 26);
    QCOMPARE(unit.call("Settings_setString", {"Gsm", "Gr\xC3\xBC\xC3\x9F"}).code, 0);
    unit.releaseAll();
    QCOMPARE(unit.call("Settings_getString", {"Gsm"}).text, QByteArray("Gr\xC3\xBC\xC3\x9F"));
    QCOMPARE(unit.call("Settings_getString", {"Gsm"}, 3).text, QByteArray("Gr"));
    QVERIFY(QFile::exists(unit.path("/state/vornaux/unit.db"_s)));
}

void LinuxUnitTest::stringsNeedAFolder()
{
    LinuxUnit unit;
    unit.write("/state"_s, "no folder");
    const auto answer = unit.call("Settings_setString", {"Gsm", "COM1"});
    QCOMPARE(kindOf(answer), 106);
    QVERIFY2(unit.textOf(answer).contains("unit.db can't be used: Not a directory"),
        unit.textOf(answer).constData());
    // The sentence has a code of its own, and keeps it.
    QCOMPARE(unit.call("Settings_setString", {"Gsm", "COM1"}).code, answer.code);
    QVERIFY(answer.code > 1000);
}

QTEST_GUILESS_MAIN(LinuxUnitTest)
#include "tst_linuxunit_posix.moc"
