#include "tests/support/pages.h"

#include "frame/window/tabMenuDlg.h"
#include "pages/tabAdvancedDlg.h"
#include "pages/tabBacklightDlg.h"
#include "pages/tabBuzzerDlg.h"
#include "pages/tabCanDlg.h"
#include "pages/tabDigIODlg.h"
#include "pages/tabLEDDlg.h"
#include "pages/tabLightSensorDlg.h"
#include "pages/tabOnOffDlg.h"
#include "pages/tabPowerDlg.h"
#include "pages/tabSysConfDlg.h"
#include "pages/tabTempDlg.h"
#include "pages/tabTouchDlg.h"
#include "pages/tabVersionDlg.h"
#include "report/tabAboutDlg.h"
#include "telematics/tabTelematicsDlg.h"

#include <algorithm>

namespace support {

namespace {

template <typename Page>
std::unique_ptr<tabDlg> make()
{
    return std::make_unique<Page>();
}

} // namespace

const PageRow pageRows[pageCount] = {
    {0, "tabMenuDlg", make<tabMenuDlg>, "Menu", "menu", -1, nullptr, nullptr, nullptr, nullptr,
        nullptr},
    {1, "tabVersionDlg", make<tabVersionDlg>, "Version", "version", 0, "pushButtonVersion",
        "hwinfo.png", "label", "Version", "buttonVersionClicked"},
    {2, "tabTempDlg", make<tabTempDlg>, "Temperature", "temperature", 1, "pushButtonTemp",
        "thermometer.png", "label_2", "Temperature", "buttonTempClicked"},
    {3, "tabBacklightDlg", make<tabBacklightDlg>, "Display", "display", 2, "pushButtonDisplay",
        "background.png", "label_3", "Display", "buttonDisplayClicked"},
    {4, "tabPowerDlg", make<tabPowerDlg>, "Power", "power", 3, "pushButtonPower", "energy.png",
        "label_4", "Power", "buttonPowerClicked"},
    {5, "tabSysConfDlg", make<tabSysConfDlg>, "Heater", "heater", 4, "pushButtonSysConfig",
        "heater.png", "label_5", "Heater", "buttonSysConfigClicked"},
    {10, "tabAdvancedDlg", make<tabAdvancedDlg>, "Advanced", "advanced", 13, "pushButtonAdvanced",
        "chip.png", "label_6", "Advanced", "buttonAdvancedClicked"},
    {7, "tabLEDDlg", make<tabLEDDlg>, "Led", "led", 6, "pushButtonLed", "ksame.png", "label_7",
        "Led", "buttonLedClicked"},
    {8, "tabBuzzerDlg", make<tabBuzzerDlg>, "Buzzer", "buzzer", 7, "pushButtonBuzzer", "arts.png",
        "label_8", "Buzzer", "buttonBuzzerClicked"},
    {6, "tabAboutDlg", make<tabAboutDlg>, "About", "about", 5, "pushButtonAbout", "kblackbox.png",
        "label_9", "About", "buttonAboutClicked"},
    {9, "tabCanDlg", make<tabCanDlg>, "CAN", "can", 8, "pushButtonCAN", "input_device.png",
        "label_10", "CAN", "buttonCanClicked"},
    {11, "tabDigIODlg", make<tabDigIODlg>, "Digital Input/Output", "digital-io", 9,
        "pushButtonDigIO", "package_settings.png", "label_11", "Digital I/O", "buttonDigIOClicked"},
    {12, "tabLightSensorDlg", make<tabLightSensorDlg>, "Light sensor", "light-sensor", 11,
        "pushButton", "Full.png", "label_12", "Light sensor", "buttonLightSensorClicked"},
    {13, "tabTouchDlg", make<tabTouchDlg>, "Touch Screen", "touch", 10, "pushButtonTouch",
        "tablet.png", "label_13", "Touch", "buttonTouchClicked"},
    {14, "tabOnOffDlg", make<tabOnOffDlg>, "On/Off Settings", "on-off", 12,
        "pushButtonOnOffSettings", "exit.png", "label_14", "On/Off", "buttonOnOffSettingsClicked"},
    {15, "tabTelematicsDlg", make<tabTelematicsDlg>, "Telematics", "telematics", 14,
        "pushButtonTelematics", "Globe.png", "label_15", "Telematics", "buttonTelematicsClicked"},
};

const PageRow &pageAt(int index)
{
    return *std::find_if(std::begin(pageRows), std::end(pageRows),
        [index](const PageRow &row) { return row.index == index; });
}

} // namespace support
