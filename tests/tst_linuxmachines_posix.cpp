#include "tests/support/LinuxBed_posix.h"
#include "tests/support/expected.h"
#include "tests/support/literals.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <atomic>
#include <linux/input.h>
#include <thread>
#include <vector>

using support::LinuxBed;
using support::operator""_s;

namespace {

/** What the compliance test has against the library on a machine; empty if nothing. */
QString failuresOn(const QString &machine)
{
    const LinuxBed bed(machine);
    const auto checked = bed.run(QStringLiteral(VORN_BIN_DIR "/vorncheck"),
        {"--write"_s, QStringLiteral(VORN_LIB_DIR "/linuxunit/libVornAux2.so")});
    const auto lines = QString::fromUtf8(checked.output).split(QLatin1Char('\n'));
    const auto failures = lines.filter("FAIL "_s).join(QLatin1Char('\n'));
    return failures.isEmpty() && checked.exitCode != 0 ? "exit code %1"_s.arg(checked.exitCode)
                                                       : failures;
}

/** What a script of Python prints in a bed, where `unit` is the library and `call()` calls it. */
QByteArray printedBy(LinuxBed &bed, const QString &script)
{
    // What Python leaves behind is its own.
    bed.environment.insert("ASAN_OPTIONS"_s, "detect_leaks=0"_s);
    const auto head = "import ctypes, os, sys\n"
                      "unit = ctypes.CDLL(sys.argv[1])\n"
                      "def create(family):\n"
                      "    f = getattr(unit, family + '_create')\n"
                      "    f.restype = ctypes.c_void_p\n"
                      "    return ctypes.c_void_p(f())\n"
                      "def text(code):\n"
                      "    unit.deviceErrorText.restype = ctypes.c_char_p\n"
                      "    return unit.deviceErrorText(code).decode('latin-1')\n"_s;
    const auto run = bed.run("python3"_s,
        {"-c"_s, head + script, QStringLiteral(VORN_LIB_DIR "/linuxunit/libVornAux2.so")});
    return run.output + run.errors;
}

} // namespace

/** The Linux unit on machines, by the real program and the compliance test. */
class LinuxMachinesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(LinuxBed::missing().isEmpty(), qPrintable(LinuxBed::missing()));
        QVERIFY(LinuxBed::machines().size() >= 12);
    }

    void reportIsAsExpected_data() { addMachines(); }

    void reportIsAsExpected()
    {
        QFETCH(QString, machine);
        const LinuxBed bed(machine);
        const auto report = QString::fromLatin1(bed.report());
        const auto lines = report.split(QLatin1Char('\n'));
        const auto expected =
            support::expectedLines(LinuxBed::folderOf(machine) + "/report.txt"_s, lines);
        for (int i = 0; i < qMin(lines.size(), expected.size()); ++i)
            QCOMPARE(lines[i], expected[i]);
        QCOMPARE(lines.size(), expected.size());
    }

    void contractIsKept()
    {
        // Side by side, since most of it is waiting.
        constexpr std::size_t atOnce = 4;
        const auto machines = LinuxBed::machines();
        std::atomic<int> next = 0;
        std::vector<QString> findings(std::size_t(machines.size()));
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < atOnce; ++i) {
            threads.emplace_back([&] {
                for (int at = next++; at < machines.size(); at = next++)
                    findings[std::size_t(at)] = failuresOn(machines[at]);
            });
        }
        for (auto &thread : threads)
            thread.join();
        for (int i = 0; i < machines.size(); ++i)
            QCOMPARE(machines[i] + findings[std::size_t(i)], machines[i]);
    }

    void tonesAreWritten()
    {
        LinuxBed bed("iei-afl19c-panel"_s);
        // umockdev's own node is a terminal; what goes into a file can be read.
        QFile node(bed.path("/dev/input/event5"_s));
        QVERIFY(node.remove());
        QVERIFY(node.open(QIODevice::WriteOnly));
        node.close();
        const auto printed =
            printedBy(bed, "h = create('Buzzer')\n"
                           "n = ctypes.c_uint16()\n"
                           "print(unit.Buzzer_getFrequency(h, ctypes.byref(n)), n.value)\n"
                           "print(unit.Buzzer_setTrigger(h, True))\n"
                           "print(unit.Buzzer_getVolume(h, ctypes.byref(n)))\n"
                           "print(unit.Buzzer_setFrequency(h, 699))\n"_s);
        QCOMPARE(printed, QByteArray("0 1000\n0\n2\n5\n"));
        QVERIFY(node.open(QIODevice::ReadOnly));
        input_event event{};
        QCOMPARE(node.read(reinterpret_cast<char *>(&event), sizeof event), qint64(sizeof event));
        QCOMPARE(int(event.type), EV_SND);
        QCOMPARE(int(event.code), SND_TONE);
        QCOMPARE(event.value, 1000);
    }

    void devicesComeAndGo()
    {
        LinuxBed bed("microsoft-surface-3-tablet"_s);
        // Another program reads the same devices all the while.
        const auto printed = printedBy(bed,
            "import shutil, subprocess\n"
            "other = subprocess.Popen([sys.executable, '-c', 'import ctypes, sys\\n"
            "unit = ctypes.CDLL(sys.argv[1])\\nunit.LightSensor_create.restype = ctypes.c_void_p\\n"
            "h = ctypes.c_void_p(unit.LightSensor_create())\\nn = ctypes.c_uint16()\\n"
            "ask = lambda: unit.LightSensor_getIlluminance(h, ctypes.byref(n))\\n"
            "print(ask(), flush=True)\\n"
            "codes = {ask() for _ in range(3000)}\\n"
            "sys.exit(0 if codes <= {0, 18} else 1)', sys.argv[1]], stdout=subprocess.PIPE)\n"
            // Who begins while it is gone knows of no sensor.
            "other.stdout.readline()\n"
            "h = create('LightSensor')\n"
            "n = ctypes.c_uint16()\n"
            "ask = lambda: unit.LightSensor_getIlluminance(h, ctypes.byref(n))\n"
            "folder = os.path.realpath('/sys/bus/iio/devices/iio:device2')\n"
            "here = os.environ['UMOCKDEV_DIR'] + folder\n"
            "seen = set()\n"
            "for i in range(50):\n"
            "    seen.add(('there', ask()))\n"
            "    shutil.move(here, here + '.gone')\n"
            "    seen.add(('gone', ask()))\n"
            "    shutil.move(here + '.gone', here)\n"
            "print(sorted(seen), other.wait())\n"_s);
        QCOMPARE(printed, QByteArray("[('gone', 18), ('there', 0)] 0\n"));
    }

    void probeDescribesTheMachine_data() { addMachines(); }

    void probeDescribesTheMachine()
    {
        QFETCH(QString, machine);
        LinuxBed bed(machine);
        const auto probe = QStringLiteral(VORN_BIN_DIR "/vornaux-probe");
        const auto probed = bed.run(probe, {});
        QCOMPARE(probed.exitCode, 0);
        QFile file(bed.path("/etc/vornaux/probed.json"_s));
        QVERIFY(QDir().mkpath(bed.path("/etc/vornaux"_s)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(probed.output) > 0);
        file.close();
        const auto checked = bed.run(probe, {"--check"_s, "/etc/vornaux/probed.json"_s});
        QCOMPARE(checked.errors, QByteArray());
        QCOMPARE(checked.output, QByteArray("/etc/vornaux/probed.json describes a machine\n"));
        // What the library finds by itself is what the file says.
        if (QFile::exists(bed.path("/etc/vornaux/unit.json"_s)))
            return;
        const auto found = bed.report();
        bed.environment.insert("VORNAUX_CONFIG"_s, "/etc/vornaux/probed.json"_s);
        QCOMPARE(bed.report(), found);
    }

private:
    static void addMachines()
    {
        QTest::addColumn<QString>("machine");
        for (const auto &machine : LinuxBed::machines())
            QTest::newRow(qPrintable(machine)) << machine;
    }
};

QTEST_GUILESS_MAIN(LinuxMachinesTest)
#include "tst_linuxmachines_posix.moc"
