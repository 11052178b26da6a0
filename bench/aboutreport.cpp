#include "frame/window/graphicalMode.h"
#include "report/systemReport.h"
#include "report/tabAboutDlg.h"

#include <QApplication>
#include <QComboBox>
#include <QPlainTextEdit>

#include <cstring>

/**
 * Shows the system report once, with the log that lies beside this program, and ends: on the About
 * page or, with the argument "plain", in a view that is handed all of it as one text.
 */
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    setApplicationLook();
    if (argc == 2 && std::strcmp(argv[1], "plain") == 0) {
        QPlainTextEdit view;
        view.setReadOnly(true);
        view.resize(415, 195);
        view.show();
        view.setPlainText(generateSystemReport());
        view.repaint();
        return 0;
    }
    tabAboutDlg page;
    page.show();
    page.findChild<QComboBox *>(QStringLiteral("comboBoxSelection"))->setCurrentIndex(4);
    page.repaint();
    return 0;
}
