#pragma once

#include "frame/tabDlg.h"

/** CAN page. */
class tabCanDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabCanDlg(QWidget *parent = nullptr);
};
