#include "devicetools/trace/Trace.h"
#include "tests/support/ProgramTree.h"

#include <QRegularExpression>
#include <QtTest>

#include <map>

using support::ProgramTree;

namespace {

const QString tool = QStringLiteral(VORN_TRACER);
const QString callers = QStringLiteral(VORN_TEST_PROGRAMS "/callers");

/** A tree in whose runs the sanitizers let a library be loaded before them. */
class Tree : public ProgramTree
{
public:
    Tree()
        : ProgramTree(QStringLiteral(VORN_DEVICE_LIBRARY))
    {
        letOthersFindUnit();
        environment.insert(
            QStringLiteral("ASAN_OPTIONS"), environment.value(QStringLiteral("ASAN_OPTIONS")) +
                                                QStringLiteral(":verify_asan_link_order=0"));
    }

    support::Run trace(const QStringList &options, const QStringList &arguments) const
    {
        return runOther(tool, options + QStringList{QStringLiteral("--"), callers} + arguments);
    }
};

const QStringList record{QStringLiteral("record"), QStringLiteral("--times"),
    QStringLiteral("--output"), QStringLiteral("trace")};
const QStringList replay{
    QStringLiteral("replay"), QStringLiteral("--strict"), QStringLiteral("trace")};

} // namespace

/** Many threads at once, traced and replayed. */
class VorntraceThreadsTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_areWholeAndInOrder();
    void answers_areGivenOnAllThreads();
    void faults_areCountedOnAllThreads();
    void crash_losesNoFinishedLine();
};

void VorntraceThreadsTest::lines_areWholeAndInOrder()
{
    const Tree tree;
    const auto run = tree.trace(record, {QStringLiteral("8"), QStringLiteral("200")});
    QVERIFY2(run.exitCode == 0, run.errors.constData());
    const auto trace = trace::read(tree.read(QStringLiteral("trace")).toStdString());
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

void VorntraceThreadsTest::answers_areGivenOnAllThreads()
{
    const Tree tree;
    tree.trace(record, {QStringLiteral("8"), QStringLiteral("50")});
    const auto run = tree.trace(replay, {QStringLiteral("8"), QStringLiteral("100")});
    QVERIFY2(run.exitCode == 0, run.errors.constData());
    QCOMPARE(run.errors, QByteArray("vorntrace: 816 calls, 0 not in the trace\n"));
}

void VorntraceThreadsTest::faults_areCountedOnAllThreads()
{
    const Tree tree;
    const auto run =
        tree.trace(record + QStringList{QStringLiteral("--fault"),
                                QStringLiteral("Settings_getString=77,after=10,times=500")},
            {QStringLiteral("8"), QStringLiteral("100")});
    QVERIFY2(run.exitCode == 0, run.errors.constData());
    QCOMPARE(tree.read(QStringLiteral("trace")).count(" = 77 fault <"), 500);
}

/** What the program's own thread has called before it crashes is there, and only whole lines are.
 */
void VorntraceThreadsTest::crash_losesNoFinishedLine()
{
    const Tree tree;
    const auto run =
        tree.trace({QStringLiteral("record"), QStringLiteral("--output"), QStringLiteral("trace")},
            {QStringLiteral("4"), QStringLiteral("100"), QStringLiteral("crash")});
    QVERIFY(!run.endedNormally || run.exitCode != 0);
    const auto trace = trace::read(tree.read(QStringLiteral("trace")).toStdString());
    QCOMPARE(trace.warning, std::string());
    const auto written = std::count_if(trace.calls.begin(), trace.calls.end(),
        [](const auto &call) { return std::string_view(call.name) == "Settings_setString"; });
    QCOMPARE(written, 100);
}

QTEST_GUILESS_MAIN(VorntraceThreadsTest)
#include "tst_vorntracethreads.moc"
