#include "pages/tabOnOffDlg.h"

tabOnOffDlg::tabOnOffDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("On/Off Settings"));
}
