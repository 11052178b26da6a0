#include "pages/tabSysConfDlg.h"

tabSysConfDlg::tabSysConfDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Heater"));
}
