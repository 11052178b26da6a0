#include "pages/tabVersionDlg.h"

tabVersionDlg::tabVersionDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Version"));
}
