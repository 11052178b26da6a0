#include "pages/tabLightSensorDlg.h"

tabLightSensorDlg::tabLightSensorDlg(QWidget *parent)
    : tabDlg(parent)
{
    setWindowTitle(tr("Light sensor"));
}
