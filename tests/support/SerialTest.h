#pragma once

#include "tests/support/SerialLine.h"

#include <QObject>

/** Base of the serial layer's tests: what holds on every system. */
class SerialTest : public QObject
{
    Q_OBJECT

protected:
    /** Rows for all speeds. Columns: baud (the code), speed. */
    static void addSpeeds();
    /** Rows of four codes, one of which at least is refused. Columns: codes, result. */
    static void addRefusedCodes();

private slots:
    void unconfiguredIsNotTouched();
    void nothingToMove();
    void allBytesPass();
    void fullAtOnce();
    void stoppedReadsTakeNothing();
    void linesStandAlone();
};
