#include "pages/tabPowerDlg.h"

tabPowerDlg::tabPowerDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Power"));
}
