#include "pages/tabTouchDlg.h"

tabTouchDlg::tabTouchDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Touch Screen"));
}
