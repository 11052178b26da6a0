#include "tests/support/PageWalk.h"

#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"

#include <QCoreApplication>
#include <QTabWidget>

namespace support {

tabDlg *visiblePage(const VornSettings &window)
{
    for (auto *page : window.findChildren<tabDlg *>()) {
        if (page->isVisible())
            return page;
    }
    return nullptr;
}

void walkPages(VornSettings &window, const std::function<void(tabDlg *, const QString &)> &visit)
{
    for (int index = menuTab; index < tabCount; ++index) {
        window.showTab(index);
        tabDlg *page = visiblePage(window);
        auto *tabs = page->findChild<QTabWidget *>();
        for (int tab = 0; tab < (tabs ? tabs->count() : 1); ++tab) {
            QString place = page->windowTitle();
            if (tabs) {
                tabs->setCurrentIndex(tab);
                place += QStringLiteral(", ") + tabs->tabText(tab);
            }
            QCoreApplication::processEvents();
            visit(page, place);
        }
    }
}

} // namespace support
