#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"

#include <QApplication>
#include <QTabWidget>

/** The window with the GPS tab of the Telematics page, until the process is asked to end. */
int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    setApplicationLook();
    VornSettings window;
    window.show();
    window.showTab(telematicsTab);
    auto *page = window.findChild<QWidget *>(QStringLiteral("tabTelematics"));
    page->findChild<QTabWidget *>(QStringLiteral("tabWidget"))->setCurrentIndex(1);
    return QApplication::exec();
}
