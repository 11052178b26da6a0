#include "bench/firstpaint.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"

#include <QApplication>

#include <chrono>
#include <cstdio>

/**
 * How long each page takes from the call that shows it until it stands painted, read from the unit
 * that VORN_UNIT names. A line of output is a tab index and milliseconds, of the second visit.
 */
int main(int argc, char *argv[])
{
    using Clock = std::chrono::steady_clock;
    QApplication application(argc, argv);
    setApplicationLook();
    VornSettings window;
    window.show();
    QApplication::processEvents();
    for (const bool measured : {false, true}) {
        for (int index = menuTab; index < tabCount; ++index) {
            const auto start = Clock::now();
            window.showTab(index);
            window.repaint();
            const std::chrono::duration<double, std::milli> time = Clock::now() - start;
            QApplication::processEvents();
            if (measured)
                std::printf("%d %.3f\n", index, time.count());
        }
    }
    return 0;
}
