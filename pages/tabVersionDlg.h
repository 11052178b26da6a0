#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabVersionDlg.h"

/** Version page: the versions of all that runs on the unit, read anew each time it shows. */
class tabVersionDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabVersionDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void showVersions();
    void checkInstallation();

    Form<Ui::tabVersion> ui{this};
    DeviceHandle<Versions_create, Versions_release> versions;
};
