#pragma once

namespace support {

/** A page of the window and its entry in the menu. */
struct PageRow {
    int index; ///< tab index
    const char *className;
    const char *title;
    const char *shot;    ///< name of its pictures in the documents
    int place;           ///< of its menu entry, row by row, five to a row; -1 for the menu
    const char *button;  ///< in the menu, as all that follows
    const char *picture; ///< among the resources
    const char *label;
    const char *caption;
    const char *slot;
};

/** All pages, in the order in which the window builds them. */
inline constexpr PageRow pageRows[] = {
    {0, "tabMenuDlg", "Menu", "menu", -1, nullptr, nullptr, nullptr, nullptr, nullptr},
    {1, "tabVersionDlg", "Version", "version", 0, "pushButtonVersion", "hwinfo.png", "label",
        "Version", "buttonVersionClicked"},
    {2, "tabTempDlg", "Temperature", "temperature", 1, "pushButtonTemp", "thermometer.png",
        "label_2", "Temperature", "buttonTempClicked"},
    {3, "tabBacklightDlg", "Display", "display", 2, "pushButtonDisplay", "background.png",
        "label_3", "Display", "buttonDisplayClicked"},
    {4, "tabPowerDlg", "Power", "power", 3, "pushButtonPower", "energy.png", "label_4", "Power",
        "buttonPowerClicked"},
    {5, "tabSysConfDlg", "Heater", "heater", 4, "pushButtonSysConfig", "heater.png", "label_5",
        "Heater", "buttonSysConfigClicked"},
    {10, "tabAdvancedDlg", "Advanced", "advanced", 13, "pushButtonAdvanced", "chip.png", "label_6",
        "Advanced", "buttonAdvancedClicked"},
    {7, "tabLEDDlg", "Led", "led", 6, "pushButtonLed", "ksame.png", "label_7", "Led",
        "buttonLedClicked"},
    {8, "tabBuzzerDlg", "Buzzer", "buzzer", 7, "pushButtonBuzzer", "arts.png", "label_8", "Buzzer",
        "buttonBuzzerClicked"},
    {6, "tabAboutDlg", "About", "about", 5, "pushButtonAbout", "kblackbox.png", "label_9", "About",
        "buttonAboutClicked"},
    {9, "tabCanDlg", "CAN", "can", 8, "pushButtonCAN", "input_device.png", "label_10", "CAN",
        "buttonCanClicked"},
    {11, "tabDigIODlg", "Digital Input/Output", "digital-io", 9, "pushButtonDigIO",
        "package_settings.png", "label_11", "Digital I/O", "buttonDigIOClicked"},
    {12, "tabLightSensorDlg", "Light sensor", "light-sensor", 11, "pushButton", "Full.png",
        "label_12", "Light sensor", "buttonLightSensorClicked"},
    {13, "tabTouchDlg", "Touch Screen", "touch", 10, "pushButtonTouch", "tablet.png", "label_13",
        "Touch", "buttonTouchClicked"},
    {14, "tabOnOffDlg", "On/Off Settings", "on-off", 12, "pushButtonOnOffSettings", "exit.png",
        "label_14", "On/Off", "buttonOnOffSettingsClicked"},
    {15, "tabTelematicsDlg", "Telematics", "telematics", 14, "pushButtonTelematics", "Globe.png",
        "label_15", "Telematics", "buttonTelematicsClicked"},
};

/** The page of that tab index, 0 to 15. */
constexpr const PageRow &pageAt(int index)
{
    const PageRow *row = pageRows;
    while (row->index != index)
        ++row;
    return *row;
}

} // namespace support
