// Opens every page of the window and prints what stands on each, for tests that compare two walks.
#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "tests/support/shownText.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

namespace {

/** Timers would ask as often as the machine's speed lets them. */
void holdTimers(const QObject &object)
{
    for (auto *timer : object.findChildren<QTimer *>())
        timer->stop();
}

void print(const QWidget &page)
{
    std::printf("%s\n", page.metaObject()->className());
    for (const auto *widget : page.findChildren<QWidget *>()) {
        const QString text = support::shownText(widget);
        if (!text.isEmpty()) {
            std::printf("  %s %s%s\n", qPrintable(widget->objectName()), qPrintable(text),
                widget->isVisible() ? "" : " (hidden)");
        }
    }
}

const QWidget *visiblePage(const QWidget &window)
{
    for (const auto *page : window.findChildren<tabDlg *>()) {
        if (page->isVisible())
            return page;
    }
    return nullptr;
}

void show(VornSettings &window, int index)
{
    window.showTab(index);
    holdTimers(window);
    QApplication::processEvents();
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    VornSettings window;
    window.show();
    for (int index = menuTab; index < tabCount; ++index) {
        show(window, index);
        const auto *page = visiblePage(window);
        if (page && index != powerTab)
            print(*page);
    }
    // The battery's thread brings what it reads in its own time.
    show(window, powerTab);
    QElapsedTimer clock;
    for (clock.start(); clock.elapsed() < 3000;) // milliseconds, more than one of its rounds
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    if (const auto *page = visiblePage(window))
        print(*page);
    return 0;
}
