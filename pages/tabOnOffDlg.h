#pragma once

#include "frame/tabDlg.h"

/** On/Off page. */
class tabOnOffDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabOnOffDlg(QWidget *parent = nullptr);
};
