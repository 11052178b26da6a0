#pragma once

#include "frame/tabDlg.h"

/** Telematics page. */
class tabTelematicsDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabTelematicsDlg(QWidget *parent = nullptr);
};
