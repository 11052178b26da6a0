#pragma once

#include <QString>

#include <functional>

class VornSettings;
class tabDlg;

namespace support {

/** The page that shows; null if none does. */
tabDlg *visiblePage(const VornSettings &window);

/** Shows each page of the window, and each of its tabs, and calls the visitor then, with
 *  "Touch Screen, Advanced" for where it is. The window shows. */
void walkPages(VornSettings &window, const std::function<void(tabDlg *, const QString &)> &visit);

} // namespace support
