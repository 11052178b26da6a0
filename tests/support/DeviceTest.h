#pragma once

#include "frame/VornAux2.h"
#include "tests/support/Dialogs.h"
#include "tests/support/failureCodes.h"
#include "tests/support/literals.h"

#include <QStringList>
#include <QtTest>

/**
 * Base of tests on the virtual unit: each test function has a unit of its own in memory, of the
 * profile "full", with a clock that stands still, a journal of calls from the start of the
 * function, and dialogs that answer themselves. A dialog or a Qt warning that the function hasn't
 * taken fails it.
 */
class DeviceTest : public QObject
{
    Q_OBJECT

protected:
    support::Dialogs dialogs;

    /** Replaces the unit by that profile and empties the journal. */
    void useProfile(const QString &profile);
    void setUnit(const QString &name, const QString &value);
    QString unit(const QString &name);
    void fault(const QString &operation, int code, unsigned times = 0, unsigned after = 0);
    void clearFaults();

    /** The calls since the last time, without handles and threads: "Buzzer_create()",
     *  "Buzzer_getVolume() = 0 [25]", "Buzzer_setVolume(30) = 0". */
    QStringList calls();
    /** Those of them that this thread made. */
    QStringList mainThreadCalls();
    /** All with thread and handle numbers, as the journal's file has them. */
    QStringList journal();
    /** Qt's warnings since the last time. */
    static QStringList takeWarnings();

protected slots:
    void init();
    void cleanup();

private:
    unsigned mainThread = 0; // its number in the journal
};

#define VORN_TEST_MAIN(Test)                    \
    int main(int argc, char *argv[])            \
    {                                           \
        support::prepareEnvironment();          \
        QApplication application(argc, argv);   \
        Test test;                              \
        return QTest::qExec(&test, argc, argv); \
    }
