#pragma once

#include "frame/tabDlg.h"

/** Buzzer page. */
class tabBuzzerDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabBuzzerDlg(QWidget *parent = nullptr);
};
