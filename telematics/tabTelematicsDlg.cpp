#include "telematics/tabTelematicsDlg.h"

tabTelematicsDlg::tabTelematicsDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Telematics"));
}
