#include "report/tabAboutDlg.h"

tabAboutDlg::tabAboutDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("About"));
}
