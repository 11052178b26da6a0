#include "frame/window/tabMenuDlg.h"

#include "frame/window/TabIndex.h"

tabMenuDlg::tabMenuDlg(QWidget *parent)
    : tabDlg(parent)
{}

void tabMenuDlg::buttonVersionClicked()
{
    emit tabSelectionChanged(versionTab);
}

void tabMenuDlg::buttonTempClicked()
{
    emit tabSelectionChanged(temperatureTab);
}

void tabMenuDlg::buttonDisplayClicked()
{
    emit tabSelectionChanged(displayTab);
}

void tabMenuDlg::buttonPowerClicked()
{
    emit tabSelectionChanged(powerTab);
}

void tabMenuDlg::buttonSysConfigClicked()
{
    emit tabSelectionChanged(heaterTab);
}

void tabMenuDlg::buttonAboutClicked()
{
    emit tabSelectionChanged(aboutTab);
}

void tabMenuDlg::buttonLedClicked()
{
    emit tabSelectionChanged(ledTab);
}

void tabMenuDlg::buttonBuzzerClicked()
{
    emit tabSelectionChanged(buzzerTab);
}

void tabMenuDlg::buttonCanClicked()
{
    emit tabSelectionChanged(canTab);
}

void tabMenuDlg::buttonAdvancedClicked()
{
    emit tabSelectionChanged(advancedTab);
}

void tabMenuDlg::buttonDigIOClicked()
{
    emit tabSelectionChanged(digitalIOTab);
}

void tabMenuDlg::buttonLightSensorClicked()
{
    emit tabSelectionChanged(lightSensorTab);
}

void tabMenuDlg::buttonTouchClicked()
{
    emit tabSelectionChanged(touchTab);
}

void tabMenuDlg::buttonOnOffSettingsClicked()
{
    emit tabSelectionChanged(onOffTab);
}

void tabMenuDlg::buttonTelematicsClicked()
{
    emit tabSelectionChanged(telematicsTab);
}
