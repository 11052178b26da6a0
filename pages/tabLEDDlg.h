#pragma once

#include "frame/tabDlg.h"

/** Led page. */
class tabLEDDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabLEDDlg(QWidget *parent = nullptr);
};
