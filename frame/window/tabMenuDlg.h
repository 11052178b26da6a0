#pragma once

#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabMenuDlg.h"

/**
 * Start page: an icon button for every other page. It knows pages by their tab index alone; which
 * of them the unit has is the main window's affair, and the window dims entries through ui.
 */
class tabMenuDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabMenuDlg(QWidget *parent = nullptr);

    Form<Ui::tabMenu> ui{this};

signals:
    /** Someone asks for the page with that tab index, 1 to 15. */
    void tabSelectionChanged(int index);

private slots:
    void buttonVersionClicked();
    void buttonTempClicked();
    void buttonDisplayClicked();
    void buttonPowerClicked();
    void buttonSysConfigClicked();
    void buttonAboutClicked();
    void buttonLedClicked();
    void buttonBuzzerClicked();
    void buttonCanClicked();
    void buttonAdvancedClicked();
    void buttonDigIOClicked();
    void buttonLightSensorClicked();
    void buttonTouchClicked();
    void buttonOnOffSettingsClicked();
    void buttonTelematicsClicked();
};
