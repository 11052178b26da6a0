#pragma once

#include "frame/tabDlg.h"

/** Light sensor page. */
class tabLightSensorDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabLightSensorDlg(QWidget *parent = nullptr);
};
