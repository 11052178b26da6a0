#pragma once

#include <memory>

class tabDlg;

namespace support {

/** A page of the window and its entry in the menu. */
struct PageRow {
    int index; ///< tab index
    const char *className;
    std::unique_ptr<tabDlg> (*make)();
    const char *title;
    const char *shot;    ///< name of its pictures in the documents
    int place;           ///< of its menu entry, row by row, five to a row; -1 for the menu
    const char *button;  ///< in the menu, as all that follows
    const char *picture; ///< among the resources
    const char *label;
    const char *caption;
    const char *slot;
};

/** How many there are, the menu among them. */
inline constexpr int pageCount = 16;

/** All pages, in the order in which the window builds them. The one list of them in the tests. */
extern const PageRow pageRows[pageCount];

/** The page of that tab index, 0 to 15. */
const PageRow &pageAt(int index);

} // namespace support
