#pragma once

#include "tests/support/pages.h"

#include <QList>
#include <QWidget>

class VornSettings;
class tabDlg;

namespace support {

/** What the window shows at a time: a page, and of a page with tabs the one in front. */
struct View {
    int index; ///< of the page
    int tab;   ///< 0 where a page has none
};

/** Rows "touch 1" for all views, the menu among them. Columns: index, tab. */
void addViewRows();

/** Opens the page as the menu does and its tab as a finger does. */
tabDlg *openView(VornSettings &window, View view);

/** Where Tab leads from the widget that has the focus, which comes first, until it is back there.
 */
QList<QWidget *> tabStops(const VornSettings &window);

/** The widgets below this one that Tab may stop at, in the order in which the eye reads them: line
 * by line where a line can be drawn across, else column by column, a group or a tab as a whole. */
QList<QWidget *> readingOrder(const QWidget *area);

/** For messages; what Qt puts into a widget is named after it. */
QString nameOf(const QWidget *widget);
QStringList namesOf(const QList<QWidget *> &widgets);

} // namespace support
