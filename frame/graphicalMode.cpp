#include "frame/graphicalMode.h"

#include <QApplication>
#include <QMainWindow>

int runGraphicalMode(int &argc, char **argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.show();
    return application.exec();
}
