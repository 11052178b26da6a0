#include "report/sections.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>

/** Builds the CPU board section under a window system and prints what box came up. */
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, &closer, [] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        std::printf("%s|%s|icon %d|parent %d", qPrintable(box->windowTitle()),
            qPrintable(box->text()), int(box->icon()), box->parentWidget() != nullptr);
        for (const QAbstractButton *button : box->buttons())
            std::printf("|%s", qPrintable(button->text().remove(QLatin1Char('&'))));
        std::printf("\n");
        box->accept();
    });
    closer.start(10);
    std::printf("text '%s'\n", qPrintable(cpuBoardDataText()));
    return 0;
}
