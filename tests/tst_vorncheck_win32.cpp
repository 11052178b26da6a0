#include "tests/support/CheckTest.h"

#include <QtTest>

#include <windows.h>

using namespace support;

/** The compliance test among the events of its console. */
class VorncheckWin32Test : public CheckTest
{
    Q_OBJECT

private slots:
    /** Of the console's events, wine 8 sends no other than this one. */
    void putsBackOnControlC()
    {
        const auto before = settings();
        QProcess tool; // gets a console of its own, which nobody sees
        startWriting(tool);
        if (QTest::currentTestFailed())
            return;
        // Events reach those who share the console; this process only sends it.
        FreeConsole();
        QVERIFY(AttachConsole(DWORD(tool.processId())));
        SetConsoleCtrlHandler(passOver, TRUE);
        const bool sent = GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
        const bool isOver = tool.waitForFinished(checkPatience);
        FreeConsole();
        SetConsoleCtrlHandler(passOver, FALSE);
        QVERIFY(sent);
        QVERIFY(isOver);
        QCOMPARE(unsigned(tool.exitCode()), unsigned(STATUS_CONTROL_C_EXIT));
        QVERIFY(settings() == before);
    }

private:
    static BOOL WINAPI passOver(DWORD) { return TRUE; }
};

QTEST_GUILESS_MAIN(VorncheckWin32Test)
#include "tst_vorncheck_win32.moc"
