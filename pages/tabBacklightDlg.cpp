#include "pages/tabBacklightDlg.h"

tabBacklightDlg::tabBacklightDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Display"));
}
