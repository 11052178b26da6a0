#include "tests/support/LinuxBed_posix.h"
#include "tests/support/MockBus_posix.h"
#include "tests/support/MockRtnetlink_posix.h"
#include "tests/support/expected.h"
#include "tests/support/literals.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <vector>

using support::LinuxBed;
using support::MockBus;
using support::operator""_s;

namespace {

constexpr int patience = 300'000; // milliseconds
const QString window = QStringLiteral(VORN_TEST_PROGRAMS "/linuxwindow");

/** A window at work in a bed. */
class Working
{
public:
    Working(const LinuxBed &bed, const QStringList &arguments)
    {
        process.setProcessEnvironment(bed.environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(window, arguments);
    }

    /** What it found; empty if nothing. */
    QString findings()
    {
        if (!process.waitForFinished(patience)) {
            process.kill();
            process.waitForFinished();
            return "it doesn't end"_s;
        }
        QString said = QString::fromUtf8(process.readAll());
        const auto lines =
            said.split(QLatin1Char('\n')).filter(QRegularExpression("^(?!QStandardPaths)."_s));
        if (process.exitStatus() != QProcess::NormalExit)
            said = "crashed "_s + said;
        else
            said = lines.join(QLatin1Char('\n'));
        return said.isEmpty() && process.exitCode() != 0 ? "exit code %1"_s.arg(process.exitCode())
                                                         : said;
    }

private:
    QProcess process;
};

/** A disk, and whatever else the window asks the bus for. */
const QByteArray services = R"py(
UD = 'org.freedesktop.UDisks2'
manager = service(UD, '/org/freedesktop/UDisks2', UD + '.Manager', manager=True)
manager.AddObject('/org/freedesktop/UDisks2/drives/disk', UD + '.Drive', {
    'Id': 'disk', 'Serial': 'S4EWNF0M', 'ConnectionBus': '', 'Removable': dbus.Boolean(False),
    'Optical': dbus.Boolean(False), 'SortKey': '00coldplug/10fixed', 'Size': dbus.UInt64(8054112256)}, [])
login = service('org.freedesktop.login1', '/org/freedesktop/login1', 'org.freedesktop.login1.Manager')
login.AddMethod('org.freedesktop.login1.Manager', 'CanSuspend', '', 's', 'ret = "yes"')
)py";

/** Where the machine itself changes meanwhile, not all is as it was. */
const QRegularExpression notBack("not all came back: [^\n]*\n?"_s);

/** Machines that differ in what they have. */
const char *const sampled[] = {"hp-elitebook-835-g10", "raspberrypi-3b-7inch-touch",
    "siemens-ipc227g", "vesta-300-imx6ul-gateway"};

} // namespace

/**
 * The real window on the Linux unit, on machines of tests/machines/: what it shows there, and that
 * nothing comes to harm while files vanish, fail, keep waiting and hold nonsense.
 *
 * VORN_SEEDS in the environment is the number of sweeps on each of all machines, in the place of
 * one on a few.
 */
class LinuxWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(LinuxBed::missing().isEmpty(), qPrintable(LinuxBed::missing()));
    }

    void pagesAreAsExpected_data()
    {
        QTest::addColumn<QString>("machine");
        for (const char *machine : sampled)
            QTest::newRow(machine) << QString::fromLatin1(machine);
    }

    /** Which entries of the menu are dimmed, what each page shows and what boxes come. */
    void pagesAreAsExpected()
    {
        QFETCH(QString, machine);
        const LinuxBed bed(machine);
        auto lines = Working(bed, {"pages"_s}).findings().split(QLatin1Char('\n'));
        const auto expected =
            support::expectedLines(LinuxBed::folderOf(machine) + "/pages.txt"_s, lines);
        for (int i = 0; i < qMin(lines.size(), expected.size()); ++i)
            QCOMPARE(lines[i], expected[i]);
        QCOMPARE(lines.size(), expected.size());
    }

    void buzzerTellsOfItsTone()
    {
        const LinuxBed bed("iei-afl19c-panel"_s);
        QCOMPARE(Working(bed, {"buzzer"_s}).findings(), "Off\nOn\nOff\nOn"_s);
    }

    void sweeps()
    {
        const int seeds = qEnvironmentVariableIntValue("VORN_SEEDS");
        QStringList machines = seeds > 0 ? LinuxBed::machines() : QStringList();
        if (machines.isEmpty()) {
            for (const char *machine : sampled)
                machines << QString::fromLatin1(machine);
        }
        for (int seed = 1; seed <= qMax(1, seeds); ++seed) {
            // Side by side, since most of it is waiting.
            for (int first = 0; first < machines.size(); first += 4) {
                std::vector<std::unique_ptr<LinuxBed>> beds;
                std::vector<std::unique_ptr<Working>> windows;
                for (const auto &machine : machines.mid(first, 4)) {
                    beds.push_back(std::make_unique<LinuxBed>(machine));
                    windows.push_back(std::make_unique<Working>(
                        *beds.back(), QStringList{"sweep"_s, QString::number(seed)}));
                }
                for (std::size_t i = 0; i < windows.size(); ++i)
                    QCOMPARE("%1, seed %2: "_s.arg(machines[first + int(i)]).arg(seed) +
                                 windows[i]->findings(),
                        "%1, seed %2: "_s.arg(machines[first + int(i)]).arg(seed));
            }
        }
    }

    void servicesDieBehindTheWindow()
    {
        QVERIFY2(
            MockBus::isPossible(), "dbus-daemon or python3-dbusmock of packages.txt is missing");
        MockBus bus;
        bus.play(services);
        LinuxBed bed("lenovo-thinkpad-t430s"_s);
        bed.environment.insert(
            "DBUS_SYSTEM_BUS_ADDRESS"_s, qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"));
        Working first(bed, {"sweep"_s, "101"_s});
        QTest::qWait(1500); // in the middle of it
        bus.killServices();
        QTest::qWait(1000);
        bus.killBus();
        QCOMPARE(first.findings().remove(notBack), QString());
    }

    void sixtyFourSensors()
    {
        const LinuxBed bed("aaeon-gene-apl5-board"_s);
        const QString chip = bed.path("/sys/class/hwmon/"_s);
        const auto chips = QDir(chip).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QVERIFY(!chips.isEmpty());
        for (int sensor = 20; sensor < 84; ++sensor) {
            QFile file(chip + chips.first() + "/temp%1_input"_s.arg(sensor));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("41000\n") > 0);
        }
        QCOMPARE(Working(bed, {"sweep"_s, "3"_s}).findings(), QString());
    }

    void twoWindowsAtOnce()
    {
        const LinuxBed bed("microsoft-surface-3-tablet"_s);
        Working one(bed, {"sweep"_s, "4"_s});
        Working other(bed, {"sweep"_s, "5"_s});
        // What one sets, the other sees.
        QCOMPARE(one.findings().remove(notBack), QString());
        QCOMPARE(other.findings().remove(notBack), QString());
    }
};

QTEST_GUILESS_MAIN(LinuxWindowTest)
#include "tst_linuxwindow_posix.moc"
