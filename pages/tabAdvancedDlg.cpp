#include "pages/tabAdvancedDlg.h"

tabAdvancedDlg::tabAdvancedDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Advanced"));
}
