#include "telematics/tabTelematicsDlg.h"
#include "telematics/telematicsState.h"
#include "tests/support/PageTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SkippedPauses.h"
#include "virtualunit/VirtualUnit.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBlock>

#include <algorithm>
#include <cstdio>
#include <memory>

using namespace support;

namespace {

constexpr int threadEnd = 20'000; // milliseconds, generous
constexpr int atOnce = 1000;      // milliseconds that a loaded machine may take for next to nothing

constexpr char endOnGpsTab[] = "--end-on-gps-tab";

/** Zero bytes, which end a chunk's text, fill up what the thread's read waits for. */
QByteArray fullChunk(const QByteArray &text)
{
    return text.leftJustified(512, '\0');
}

/** Line number n of a talk, 16 bytes with its end. */
QByteArray talk(int n)
{
    return "line " + QByteArray::number(n).rightJustified(9, '.') + "\r\n";
}

QByteArray talk(int first, int last)
{
    QByteArray text;
    for (int n = first; n <= last; ++n)
        text += talk(n);
    return text;
}

/** A program that ends while the GPS tab shows and its thread is in a read, and tells in how many
 *  milliseconds. */
int endWhileReading(int argc, char *argv[])
{
    prepareEnvironment();
    auto application = std::make_unique<QApplication>(argc, argv);
    auto page = std::make_unique<tabTelematicsDlg>();
    page->show();
    child<QTabWidget>(page.get(), "tabWidget")->setCurrentIndex(1);
    // The thread asks for the antenna, and then nothing keeps it from reading.
    const auto reads = [] {
        QFile journal(qEnvironmentVariable("VORN_JOURNAL"));
        return journal.open(QIODevice::ReadOnly) &&
               journal.readAll().contains("T2 Telematics_getGPSAntennaStatus(");
    };
    if (!QTest::qWaitFor(reads, threadEnd) || !gpsPort.load())
        return 1;
    QTest::qWait(100);
    QElapsedTimer clock;
    clock.start();
    page.reset();
    application.reset();
    std::printf("%lld", static_cast<long long>(clock.elapsed()));
    return gpsPort.load() ? 1 : 0;
}

} // namespace

/** The GPS tab of the Telematics page: its thread's coming and going, and its raw view. */
class GpsTabTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        useNoOtherLines();
        line = std::make_unique<PseudoTerminal>();
        line->setName("COM4"_s);
    }

    void cleanup()
    {
        page.reset();
        // A thread that was left behind ends with its device call.
        QTRY_VERIFY_WITH_TIMEOUT(!gpsPort.load(), threadEnd);
        line.reset();
        PageTest::cleanup();
    }

    /** What the receiver said before is in the line, and the thread's first read has it at once. */
    void waitingBytesAreShown()
    {
        page = std::make_unique<tabTelematicsDlg>();
        page->show();
        int shown = 0;
        for (int round = 0; round < 10; ++round) {
            QVERIFY(line->send(fullChunk(talk(round))));
            goTo(1);
            QTest::qWait(200);
            shown +=
                rawView()->toPlainText() == QString::fromLatin1(talk(round)).trimmed() + "\n"_s;
            goTo(0);
        }
        // The connections come behind the thread's start, so it may be faster, if seldom.
        QVERIFY2(shown >= 8, qPrintable(QString::number(shown)));
    }

    void leavingASilentLine()
    {
        enter();
        QVERIFY(gpsPort.load());
        QElapsedTimer clock;
        clock.start();
        goTo(0);
        QVERIFY2(clock.elapsed() < atOnce, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!gpsPort.load());
        QCOMPARE(int(calls().count("Telematics_release()"_s)), 1);
    }

    /** Bytes that come one by one never let a read fall silent. */
    void leavingATalkingLine()
    {
        enter();
        QVERIFY(line->send("part of a sentence"));
        QTest::qWait(100);
        QElapsedTimer clock;
        clock.start();
        goTo(0);
        QVERIFY2(clock.elapsed() < atOnce, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!gpsPort.load());
    }

    /** The line is free for others at once, not only when it has been silent for 3 s. */
    void pageGoesWhileTheThreadReads()
    {
        enter();
        page.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!gpsPort.load(), atOnce);
    }

    void stopRightAfterASecondEntry()
    {
        line.reset(); // so that a box comes up
        page = std::make_unique<tabTelematicsDlg>();
        page->show();
        calls();
        const SkippedPauses pauses;
        int ended = 0;
        for (int round = 1; round <= 20; ++round) {
            dialogs.plan([&](QDialog *box) {
                goTo(0);
                goTo(1);
                box->accept();
            });
            goTo(1);
            goTo(0);
            // A thread that has still to set its flag hears of it all the same.
            QTRY_COMPARE((ended += int(calls().count("Telematics_release()"_s))), 2 * round);
            dialogs.take();
        }
    }

    void threadOutlivesThePatience()
    {
        enter();
        QCOMPARE(virtualunit::setDelay("Telematics_getGPSAntennaStatus", 12'000), std::string());
        QVERIFY(line->send(fullChunk("before\n")));
        QTRY_VERIFY(rawView()->toPlainText().contains("before"_s));
        QTest::qWait(100); // the thread's next call has begun
        QCOMPARE(virtualunit::setDelay("Telematics_getGPSAntennaStatus", 0), std::string());
        calls();
        QElapsedTimer clock;
        clock.start();
        goTo(0);
        QVERIFY2(clock.elapsed() >= 9900, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(gpsPort.load());

        // The next thread has the line that the old one still holds, and all that comes from it.
        goTo(1);
        QVERIFY(!calls().contains("Telematics_release()"_s));
        QString expected;
        for (int n = 0; n < 8; ++n) {
            QVERIFY(line->send(talk(32 * n, 32 * n + 31)));
            expected += QString::fromLatin1(talk(32 * n, 32 * n + 31)).remove(QLatin1Char('\r'));
            QTest::qWait(400);
        }
        QCOMPARE(rawView()->toPlainText(), expected);
        QVERIFY(calls().contains("Telematics_release()"_s));
        QVERIFY(gpsPort.load());
        goTo(0);
        QVERIFY(!gpsPort.load());
    }

    void programEndsWhileTheThreadReads()
    {
        const int speed = line->speed();
        const QTemporaryDir folder;
        QProcess program;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VORN_UNIT"_s, folder.filePath("unit.sqlite"_s));
        environment.insert("VORN_JOURNAL"_s, folder.filePath("journal"_s));
        environment.insert("XDG_RUNTIME_DIR"_s, folder.path()); // else Qt complains
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(endOnGpsTab)});
        QVERIFY(program.waitForFinished(threadEnd));
        QCOMPARE(program.readAllStandardError(), QByteArray());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        const QByteArray milliseconds = program.readAllStandardOutput();
        QVERIFY2(
            !milliseconds.isEmpty() && milliseconds.toInt() < atOnce, milliseconds.constData());
        // The thread came to its end: no handle is left, and the line is as it was.
        QFile file(folder.filePath("journal"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray journal = file.readAll();
        QCOMPARE(journal.count("Telematics_create"), 2);
        QCOMPARE(journal.count("Telematics_release"), 2);
        QCOMPARE(line->speed(), speed);
    }

    void rawViewKeepsTheLastLines()
    {
        enter();
        receive(1, 6000);
        const QStringList lines = rawView()->toPlainText().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 5000); // the last of them is the one to come
        QCOMPARE(lines.first(), QString::fromLatin1(talk(1002)).trimmed());
        QCOMPARE(lines.at(4998), QString::fromLatin1(talk(6000)).trimmed());
    }

    void rawViewFollowsTheNewestLine()
    {
        enter();
        receive(1, 100); // while the other view shows
        click(page.get(), "buttonToggleData");
        QTRY_VERIFY(scrollBar()->maximum() > 0 && scrollBar()->value() == scrollBar()->maximum());
        receive(101, 200);
        QCOMPARE(scrollBar()->value(), scrollBar()->maximum());
        // Back at the end, it goes on.
        scrollBar()->setValue(10);
        receive(201, 232);
        scrollBar()->setValue(scrollBar()->maximum());
        receive(233, 264);
        QCOMPARE(scrollBar()->value(), scrollBar()->maximum());
    }

    void rawViewStaysWhereItIsRead()
    {
        enter();
        click(page.get(), "buttonToggleData");
        receive(1, 4990);
        scrollBar()->setValue(scrollBar()->maximum() / 2);
        const QString top = topLine();
        receive(4991, 5022); // the first ones are dropped on the way
        QCOMPARE(topLine(), top);
        receive(5023, 5150);
        QCOMPARE(topLine(), top);
        // What is no longer there can't be looked at.
        scrollBar()->setValue(0);
        receive(5151, 5214);
        QCOMPARE(scrollBar()->value(), 0);
        QCOMPARE(topLine(), QString::fromLatin1(talk(5214 - 4998)).trimmed());
    }

    void selectionStays()
    {
        enter();
        click(page.get(), "buttonToggleData");
        receive(1, 20);
        QTextCursor selection = rawView()->textCursor();
        selection.setPosition(0);
        selection.setPosition(14, QTextCursor::KeepAnchor);
        rawView()->setTextCursor(selection);
        receive(21, 40);
        QCOMPARE(rawView()->textCursor().selectedText(), QString::fromLatin1(talk(1)).trimmed());
        QCOMPARE(
            rawView()->toPlainText(), QString::fromLatin1(talk(1, 40)).remove(QLatin1Char('\r')));
    }

private:
    /** Opens the page on the GPS tab, and returns when its thread has come to its read. */
    void enter()
    {
        page = std::make_unique<tabTelematicsDlg>();
        page->show();
        goTo(1);
        QStringList made;
        QTRY_VERIFY((made += calls()).count("Telematics_getGPSAntennaStatus() = 0 [1]"_s) == 3);
        QTest::qWait(100);
    }
    void goTo(int tab) { child<QTabWidget>(page.get(), "tabWidget")->setCurrentIndex(tab); }
    QPlainTextEdit *rawView() { return child<QPlainTextEdit>(page.get(), "textEdit"); }
    QScrollBar *scrollBar() { return rawView()->verticalScrollBar(); }
    /** Sends whole chunks of these lines, the last of which fills up with "-". */
    void receive(int firstLine, int lastLine)
    {
        const int perChunk = 512 / int(talk(0).size());
        for (int n = firstLine; n <= lastLine; n += perChunk)
            QVERIFY(line->send(fullChunk(talk(n, std::min(n + perChunk - 1, lastLine)))));
        const QString newest = QString::fromLatin1(talk(lastLine)).trimmed() + "\n"_s;
        QTRY_VERIFY_WITH_TIMEOUT(rawView()->toPlainText().endsWith(newest), threadEnd);
    }
    QString topLine() { return rawView()->cursorForPosition({0, 0}).block().text(); }

    std::unique_ptr<PseudoTerminal> line;
    std::unique_ptr<tabTelematicsDlg> page;
};

int main(int argc, char *argv[])
{
    if (argc == 2 && qstrcmp(argv[1], endOnGpsTab) == 0)
        return endWhileReading(argc, argv);
    prepareEnvironment();
    const QApplication application(argc, argv);
    GpsTabTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_gpstab.moc"
