#include "pages/tabTempDlg.h"

tabTempDlg::tabTempDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Temperature"));
}
