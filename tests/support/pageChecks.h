#pragma once

#include "tests/support/DeviceTest.h"

#include <QStringList>

class QWidget;

/** What the tests of all pages ask of a form and of the boxes that a page brings up. */
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

/** Columns "name", "kind", "caption" and "toolTip" for widget(). */
void addWidgetColumns();
void addWidget(
    const char *name, const char *kind, const char *caption = "", const char *toolTip = "");
/** Compares the widget of the current row with the one on the page. */
void checkWidget(const QWidget *page);

/** The caption of any kind of widget: text, title of a group, of a tab or of the page. */
QString caption(const QWidget *widget);

/** Names of the widgets whose text doesn't fit, or that reach out of their parent. The page, which
 *  must be shown, gets the program's look by it. */
QStringList clipped(QWidget *page);
/** Names of the widgets to be pressed that are lower than a finger needs (30 pixels). */
QStringList tooSmall(const QWidget *page);

/** One line that holds all of a box, for comparison with box(). */
QString describe(const Dialog &dialog);
QStringList describe(const QList<Dialog> &dialogs);
QString box(QMessageBox::Icon icon, const char *title, const QString &text, const char *parent,
    const char *buttons = "OK");

} // namespace support
