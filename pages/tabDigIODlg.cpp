#include "pages/tabDigIODlg.h"

tabDigIODlg::tabDigIODlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Digital Input/Output"));
}
