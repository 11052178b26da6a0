#include "pages/tabBuzzerDlg.h"

tabBuzzerDlg::tabBuzzerDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Buzzer"));
}
