#include "pages/tabLEDDlg.h"

tabLEDDlg::tabLEDDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Led"));
}
