#include "touchcalibrator/CalibrationWindow.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int usageError = 2;

} // namespace

/** TouchCalibrator.exe [--13p | ""]: 13 points, or else 5. Exit value 0 after a complete
 *  calibration, 1 after one that was given up. */
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QString argument = application.arguments().value(1);
    if (application.arguments().size() > 2 ||
        (!argument.isEmpty() && argument != QLatin1String("--13p"))) {
        std::fputs("usage: TouchCalibrator.exe [--13p]\n", stderr);
        return usageError;
    }
    CalibrationWindow window(
        argument.isEmpty() ? CalibrationWindow::Points::Five : CalibrationWindow::Points::Thirteen);
    bool completed = false;
    QObject::connect(
        &window, &CalibrationWindow::ended, [&completed](bool complete) { completed = complete; });
    window.showFullScreen();
    const int result = application.exec();
    return result != 0 || completed ? result : EXIT_FAILURE;
}
