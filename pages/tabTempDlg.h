#pragma once

#include "frame/tabDlg.h"

/** Temperature page. */
class tabTempDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabTempDlg(QWidget *parent = nullptr);
};
