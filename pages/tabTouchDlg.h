#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabTouchDlg.h"

/**
 * Touch screen page: mouse or touch profile, the calibration tool, and the advanced parameters of
 * the touch controller with a list of all their values.
 */
class tabTouchDlg : public tabDlg
{
    Q_OBJECT

public:
    /** Reads all parameters at once, which takes 0.1 s. */
    explicit tabTouchDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void buttonApplyClicked();
    void buttonApplyNextBootClicked();
    void buttonCalibrateClicked();
    void buttonApplySettingClicked();
    void comboboxIndexChanged(int index);
    void buttonDefaultsClicked();
    void TabChanged(int index);

private:
    void loadMode();
    /** Reads all parameters into the list; stands still for 0.1 s. */
    void showParameters();

    Form<Ui::tabTouch> ui{this};
    DeviceHandle<Touch_create, Touch_release> touch;
};
