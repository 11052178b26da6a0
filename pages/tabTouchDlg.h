#pragma once

#include "frame/tabDlg.h"

/** Touch Screen page. */
class tabTouchDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabTouchDlg(QWidget *parent = nullptr);
};
