#pragma once

#include "frame/tabDlg.h"

/** Version page. */
class tabVersionDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabVersionDlg(QWidget *parent = nullptr);
};
