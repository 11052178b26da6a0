#pragma once

#include "frame/tabDlg.h"

/** Digital I/O page. */
class tabDigIODlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabDigIODlg(QWidget *parent = nullptr);
};
