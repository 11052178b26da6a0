#pragma once

#include "frame/tabDlg.h"

/** About page. */
class tabAboutDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabAboutDlg(QWidget *parent = nullptr);
};
