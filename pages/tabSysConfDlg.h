#pragma once

#include "frame/tabDlg.h"

/** Heater page. */
class tabSysConfDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabSysConfDlg(QWidget *parent = nullptr);
};
