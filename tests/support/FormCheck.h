#pragma once

#include <QString>
#include <QWidget>

#include <initializer_list>

namespace support {

/** One widget of a form as its users know it. */
struct FormRow {
    const char *name;         ///< object name
    const char *kind;         ///< class of the widget
    const char *caption = ""; ///< text or title
    const char *toolTip = "";
};

/** What differs between the page and its table, one line for each difference; empty if nothing.
 *  Checks that each widget lies within the page too. */
QString compareForm(const QWidget *page, std::initializer_list<FormRow> rows);

} // namespace support
