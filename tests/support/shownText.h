#pragma once

#include <QString>

class QWidget;

namespace support {

/** What a widget of the pages shows for a value, as text; empty for those that show none. */
QString shownText(const QWidget *widget);

} // namespace support
