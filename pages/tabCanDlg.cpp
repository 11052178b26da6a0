#include "pages/tabCanDlg.h"

tabCanDlg::tabCanDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("CAN"));
}
