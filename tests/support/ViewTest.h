#pragma once

#include "frame/tabDlg.h"
#include "frame/window/VornSettings.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/views.h"

#include <memory>

/** Base of tests that look at the whole window, one view after the other. There are no serial
 *  lines, and the program's pauses are skipped. */
class ViewTest : public DeviceTest
{
    Q_OBJECT

protected:
    support::SkippedPauses pauses;
    std::unique_ptr<VornSettings> window;
    tabDlg *page = nullptr; ///< in front of the window

    /** Opens the active window there. What comes of it isn't the test's subject. */
    void open(support::View view);
    /** Opens it where the row of addViewRows() says. */
    void openRow();
    /** Opens it with an empty page. */
    void openEmpty();

protected slots:
    void initTestCase();
    void init();
    void cleanup();
};
