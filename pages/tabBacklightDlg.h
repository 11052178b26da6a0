#pragma once

#include "frame/tabDlg.h"

/** Display page. */
class tabBacklightDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabBacklightDlg(QWidget *parent = nullptr);
};
