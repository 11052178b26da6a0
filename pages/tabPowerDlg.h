#pragma once

#include "frame/tabDlg.h"

/** Power page. */
class tabPowerDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabPowerDlg(QWidget *parent = nullptr);
};
