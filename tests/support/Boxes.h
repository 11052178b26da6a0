#pragma once

#include "tests/support/DeviceTest.h"

/** The boxes that a page brings up, with all that they show, and the device texts in them. */
namespace support {

/** Column "code" with a row for each kind of failure: not supported, data not available, automatic
 *  backlight runs, and two faults. */
void addFailureCodes();

/** The library's text of one of these codes. Doesn't call the library. */
QString deviceText(int code);
/** The line of the journal for that text, as calls() has it. */
QString deviceTextCall(int code);
/** "Error(5) in getX: ..." with that text. */
QString deviceError(int code, const char *operation);

/** One line that holds all of a box, for comparison with box(). */
QString describe(const Dialog &dialog);
QStringList describe(const QList<Dialog> &dialogs);
QString box(QMessageBox::Icon icon, const char *title, const QString &text, const char *parent,
    const char *buttons = "OK");

} // namespace support
