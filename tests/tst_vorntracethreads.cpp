#include "devicetools/trace/Trace.h"
#include "tests/support/ProgramTree.h"

#include <QRegularExpression>
#include <QtTest>

#include <map>

using namespace support;

namespace {

const QString tool = QStringLiteral(VORN_TRACER);
const QString callers = VORN_TEST_PROGRAMS "/callers"_s;

/** A tree in whose runs the sanitizers let a library be loaded before them. */
class Tree : public ProgramTree
{
public:
    Tree()
        : ProgramTree(QStringLiteral(VORN_DEVICE_LIBRARY))
    {
        letOthersFindUnit();
        environment.insert(
            "ASAN_OPTIONS"_s, environment.value("ASAN_OPTIONS"_s) + ":verify_asan_link_order=0"_s);
    }

    support::Run trace(const QStringList &options, const QStringList &arguments) const
    {
        return runOther(tool, options + QStringList{"--"_s, callers} + arguments);
    }
};

const QStringList record{"record"_s, "--times"_s, "--output"_s, "trace"_s};
const QStringList replay{"replay"_s, "--strict"_s, "trace"_s};

} // namespace

/** Many threads at once, traced and replayed. */
class VorntraceThreadsTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_areWholeAndInOrder()
    {
        const Tree tree;
        const auto run = tree.trace(record, {"8"_s, "200"_s});
        QVERIFY2(run.exitCode == 0, run.errors.constData());
        const auto trace = trace::read(tree.read("trace"_s).toStdString());
        QCOMPARE(trace.warning, std::string());
        QCOMPARE(trace.calls.size(), std::size_t(8 * 202));
        unsigned lastThread = 0;
        double lastReturn = 0;
        std::map<unsigned, std::vector<trace::Call>> ofThread;
        for (const auto &call : trace.calls) {
            QVERIFY(call.thread <= lastThread + 1);
            lastThread = std::max(lastThread, call.thread);
            ofThread[call.thread].push_back(call);
            // A thread that has returned may wait a little for the pen.
            QVERIFY(*call.begin + *call.duration > lastReturn - 0.5);
            lastReturn = std::max(lastReturn, *call.begin + *call.duration);
        }
        QCOMPARE(ofThread.size(), std::size_t(8));
        for (const auto &[number, calls] : ofThread) {
            QCOMPARE(calls.size(), std::size_t(202));
            for (const auto &call : calls)
                QCOMPARE(call.handle, calls.front().handle);
        }
    }

    void answers_areGivenOnAllThreads()
    {
        const Tree tree;
        tree.trace(record, {"8"_s, "50"_s});
        const auto run = tree.trace(replay, {"8"_s, "100"_s});
        QVERIFY2(run.exitCode == 0, run.errors.constData());
        QCOMPARE(run.errors, QByteArray("vorntrace: 816 calls, 0 not in the trace\n"));
    }

    void faults_areCountedOnAllThreads()
    {
        const Tree tree;
        const auto run = tree.trace(
            record + QStringList{"--fault"_s, "Settings_getString=77,after=10,times=500"_s},
            {"8"_s, "100"_s});
        QVERIFY2(run.exitCode == 0, run.errors.constData());
        QCOMPARE(tree.read("trace"_s).count(" = 77 fault <"), 500);
    }

    /** What the program's own thread has called before it crashes is there, and only whole lines
     * are.
     */
    void crash_losesNoFinishedLine()
    {
        const Tree tree;
        const auto run =
            tree.trace({"record"_s, "--output"_s, "trace"_s}, {"4"_s, "100"_s, "crash"_s});
        QVERIFY(!run.endedNormally || run.exitCode != 0);
        const auto trace = trace::read(tree.read("trace"_s).toStdString());
        QCOMPARE(trace.warning, std::string());
        const auto written = std::count_if(trace.calls.begin(), trace.calls.end(),
            [](const auto &call) { return std::string_view(call.name) == "Settings_setString"; });
        QCOMPARE(written, 100);
    }
};

QTEST_GUILESS_MAIN(VorntraceThreadsTest)
#include "tst_vorntracethreads.moc"
