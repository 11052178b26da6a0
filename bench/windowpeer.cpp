#include "bench/firstpaint.h"
#include "ui_peer_VornSettings.h"
#include "ui_peer_tabAboutDlg.h"
#include "ui_peer_tabAdvancedDlg.h"
#include "ui_peer_tabBacklightDlg.h"
#include "ui_peer_tabBuzzerDlg.h"
#include "ui_peer_tabCanDlg.h"
#include "ui_peer_tabDigIODlg.h"
#include "ui_peer_tabLEDDlg.h"
#include "ui_peer_tabLightSensorDlg.h"
#include "ui_peer_tabMenuDlg.h"
#include "ui_peer_tabOnOffDlg.h"
#include "ui_peer_tabPowerDlg.h"
#include "ui_peer_tabSysConfDlg.h"
#include "ui_peer_tabTelematicsDlg.h"
#include "ui_peer_tabTempDlg.h"
#include "ui_peer_tabTouchDlg.h"
#include "ui_peer_tabVersionDlg.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QMainWindow>
#include <QVBoxLayout>

#include <cstdlib>

namespace {

template <typename... Forms>
void addPages(QVBoxLayout *layout)
{
    const auto add = [layout](auto form) {
        auto *page = new QDialog;
        form.setupUi(page);
        page->hide();
        layout->addWidget(page);
    };
    (add(Forms()), ...);
}

} // namespace

/** A plain program with the program's sheet, forms and pictures, which asks no device. */
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    QMainWindow window;
    Ui::VornSettingsClass frame;
    frame.setupUi(&window);
    QFile sheet(QStringLiteral(":/VornSettings/Resources/style.qss"));
    if (!sheet.open(QIODevice::ReadOnly))
        return EXIT_FAILURE;
    window.setStyleSheet(QString::fromUtf8(sheet.readAll()));
    auto *layout = new QVBoxLayout;
    addPages<Ui::tabMenu, Ui::tabVersion, Ui::tabTemp, Ui::tabBacklight, Ui::tabPower,
        Ui::tabSysConf, Ui::tabAdvanced, Ui::tabLED, Ui::tabBuzzer, Ui::tabAbout, Ui::tabCan,
        Ui::tabDigIO, Ui::tabLightSensor, Ui::tabTouch, Ui::tabOnOff, Ui::tabTelematics>(layout);
    frame.tabWidget->setLayout(layout);
    layout->itemAt(0)->widget()->show();
    afterFirstPaint([] { std::_Exit(EXIT_SUCCESS); });
    window.show();
    return application.exec();
}
