#pragma once

#include "frame/tabDlg.h"

/** Advanced page. */
class tabAdvancedDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabAdvancedDlg(QWidget *parent = nullptr);
};
