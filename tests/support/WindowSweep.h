#pragma once

#include "tests/support/BiosData.h"
#include "tests/support/DeviceTest.h"

#include <memory>

/**
 * Base of tests in which nothing may come to harm, whatever the unit answers: the window is opened,
 * each of its pages shown, each control pressed once, each timer fired, each dialog answered, the
 * window closed.
 * There are no serial lines, and the program's pauses are skipped.
 */
class WindowSweep : public DeviceTest
{
    Q_OBJECT

protected:
    /** Fails the test function if a dialog came that is not foreseen. */
    void sweepWindow();

    /** Whether a button takes part; all do. */
    virtual bool isWorthPressing(const QAbstractButton *button);

protected slots:
    void init();

private:
    std::unique_ptr<support::BiosData> bios;
};
