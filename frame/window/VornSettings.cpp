#include "frame/window/VornSettings.h"

#include "frame/WaitNotice.h"
#include "frame/busyInterfaces.h"
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

#include <QAbstractSpinBox>
#include <QApplication>
#include <QFile>
#include <QGraphicsOpacityEffect>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

constexpr double dimmedOpacity = 0.5;
constexpr QSize menuIconSize(60, 60);
// Pages are as wide as the page area, and leave its rounded bottom edge free.
constexpr QMargins pageMargins(0, 0, 0, 10);

QString resource(const char *name)
{
    return QStringLiteral(":/VornSettings/Resources/") + QLatin1String(name);
}

QString globalStyleSheet()
{
    QFile file(resource("style.qss"));
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT(opened); // it is part of the executable
    return opened ? QString::fromUtf8(file.readAll()) : QString();
}

// The form loads the plain picture alone; an icon knows its sharper variant too.
void sharpenLogo(QLabel *label)
{
    label->setPixmap(QIcon(resource("logo.png")).pixmap(label->pixmap(Qt::ReturnByValue).size()));
}

/** Where a page begins for the keyboard; null for one that has nothing to be worked. */
QWidget *firstControl(QWidget *page)
{
    QWidget *widget = page->nextInFocusChain();
    for (; widget != page; widget = widget->nextInFocusChain()) {
        if (page->isAncestorOf(widget) && widget->isVisibleTo(page) && widget->isEnabled() &&
            (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !widget->focusProxy())
            return widget;
    }
    return nullptr;
}

bool isPlainReturn(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
           !(event.modifiers() & ~Qt::KeypadModifier);
}

void dimByOpacity(QWidget *widget)
{
    auto *effect = new QGraphicsOpacityEffect;
    effect->setOpacity(dimmedOpacity);
    widget->setGraphicsEffect(effect);
}

} // namespace

VornSettings::VornSettings(QWidget *parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags)
    , layout(new QVBoxLayout)
{
    setStyleSheet(globalStyleSheet());
    installBusyInterfaces();
    layout->setContentsMargins(pageMargins);
    layout->setSpacing(0);
    buildPages(askFeatures());
    ui->tabWidget->setLayout(layout);
    connect(static_cast<tabMenuDlg *>(tabs[menuTab]), &tabMenuDlg::tabSelectionChanged, this,
        &VornSettings::showTab);
    if (qApp->devicePixelRatio() > 1)
        sharpenLogo(ui->label);
    leavePolishToShowing();
    showTab(menuTab);
}

// Every new widget asks to be polished once the event loop runs, but those of hidden pages needn't
// be: whatever shows is polished then. But spin boxes and the scroll bars of texts took the look of
// their base class while they were constructed. The former would place their numbers by it in a
// hidden page; the latter count as polished.
void VornSettings::leavePolishToShowing()
{
    for (const auto *box : findChildren<QAbstractSpinBox *>())
        box->ensurePolished();
    for (auto *bar : findChildren<QScrollBar *>())
        bar->style()->polish(bar);
    QCoreApplication::removePostedEvents(nullptr, QEvent::PolishRequest);
}

VornSettings::Features VornSettings::askFeatures()
{
    Features has;
    DeviceBool answer = 0;
    uint8_t count = 0;
    // The pages don't depend on the modem; units see the question at every start all the same.
    static_cast<void>(Hardware_hasGsm(hardware, &answer));
    if (Hardware_getCanCount(hardware, &count) == DEVICE_OK)
        has.can = count != 0;
    if (Hardware_getDigitalInputCount(hardware, &count) == DEVICE_OK)
        has.digitalIO = count != 0;
    if (Hardware_hasDisplay(hardware, &answer) == DEVICE_OK)
        has.display = answer != 0;
    has.touch = has.display;
    if (has.display && Hardware_hasTouchscreen(hardware, &answer) == DEVICE_OK)
        has.touch = answer != 0;

    const DeviceHandle<Config_create, Config_release> config;
    int16_t celsius = 0;
    has.heater = Config_getHeatingTempLimit(config, &celsius) != DEVICE_NOT_SUPPORTED;
    return has;
}

bool VornSettings::hasTelematics()
{
    const DeviceHandle<Telematics_create, Telematics_release> telematics;
    int32_t available = 0;
    return Telematics_getAvailable(telematics, &available) == DEVICE_OK && available == 1;
}

void VornSettings::buildPages(const Features &has)
{
    auto *menuPage = new tabMenuDlg(ui->tabWidget);
    const auto &menu = menuPage->ui;

    addTab(menuPage, menuTab);
    addPage<tabVersionDlg>(versionTab, menu->pushButtonVersion);
    addPage<tabTempDlg>(temperatureTab, menu->pushButtonTemp);
    addPageIf<tabBacklightDlg>(has.display, displayTab,
        {menu->pushButtonDisplay, menu->label_3, "Display is not available", "backgroundGrey.png"});
    addPage<tabPowerDlg>(powerTab, menu->pushButtonPower);
    addPageIf<tabSysConfDlg>(has.heater, heaterTab,
        {menu->pushButtonSysConfig, menu->label_5, "Heater is not available", "heaterGrey.png"});
    addPage<tabAdvancedDlg>(advancedTab, menu->pushButtonAdvanced);
    addPage<tabLEDDlg>(ledTab, menu->pushButtonLed);
    // Without a display the buzzer has no tab of its own: its stand-in is the display's second.
    addPageIf<tabBuzzerDlg>(has.display, has.display ? buzzerTab : displayTab,
        {menu->pushButtonBuzzer, menu->label_8, "Buzzer is not available", nullptr});
    addPage<tabAboutDlg>(aboutTab, menu->pushButtonAbout);
    addPageIf<tabCanDlg>(
        has.can, canTab, {menu->pushButtonCAN, menu->label_10, "Can is not available", nullptr});
    addPageIf<tabDigIODlg>(has.digitalIO, digitalIOTab,
        {menu->pushButtonDigIO, menu->label_11, "Digital Input is not available", nullptr});
    addPageIf<tabLightSensorDlg>(has.display, lightSensorTab,
        {menu->pushButton, menu->label_12, "Light sensor is not available", "FullGrey.png"});
    addPageIf<tabTouchDlg>(has.touch, touchTab,
        {menu->pushButtonTouch, menu->label_13, "Touch Screen is not available", "tabletGrey.png"});
    addPage<tabOnOffDlg>(onOffTab, menu->pushButtonOnOffSettings);
    addPageIf<tabTelematicsDlg>(hasTelematics(), telematicsTab,
        {menu->pushButtonTelematics, menu->label_15, "Telematics module is not available",
            "GlobeGrey.png"});
}

// A page shows the picture of its menu entry. It is built inside the page area: one that came there
// later would make every one of its widgets work the style sheet out, long before anybody sees it.
template <typename Page>
void VornSettings::addPage(int index, const QPushButton *button)
{
    auto *page = new Page(ui->tabWidget);
    auto *icon = page->template findChild<QLabel *>(QStringLiteral("icon"));
    icon->setPixmap(button->icon().pixmap(menuIconSize));
    icon->setAccessibleName(page->windowTitle());
    addTab(page, index);
}

template <typename Page>
void VornSettings::addPageIf(bool present, int index, const MenuEntry &entry)
{
    if (present)
        return addPage<Page>(index, entry.button);
    addTab(new tabDlg(ui->tabWidget), index);
    dim(entry);
}

void VornSettings::dim(const MenuEntry &entry)
{
    if (entry.greyPicture) {
        QIcon icon;
        icon.addFile(resource(entry.greyPicture), QSize(), QIcon::Normal, QIcon::Off);
        entry.button->setIcon(icon);
    }
    entry.button->setIconSize(menuIconSize);
    entry.button->setToolTip(QLatin1String(entry.toolTip));
    entry.button->setEnabled(false);
    dimByOpacity(entry.button);
    dimByOpacity(entry.label);
}

void VornSettings::addTab(tabDlg *page, int index)
{
    page->hide();
    page->setAccessibleName(page->windowTitle());
    layout->addWidget(page);
    tabs.at(size_t(index)) = page;
}

void VornSettings::showTab(int index)
{
    tabDlg *page = index >= 0 && index < tabCount ? tabs[size_t(index)] : nullptr;
    if (!page)
        return;
    const WaitNotice notice(this); // a page asks for all that it shows
    if (tabDlg *former = tabs.at(size_t(currentTab)))
        former->hide();
    page->show();
    ui->tabTitle->setText(page->windowTitle());
    currentTab = index;
    contentPlace.toStart();
    QWidget *first = firstControl(page);
    (first ? first : ui->buttonMenu)->setFocus();
}

void VornSettings::exit()
{
    close();
}

void VornSettings::menuClicked()
{
    showTab(menuTab);
}

// Return presses the button that has the focus, as Space does, and nothing else: no page has a
// button that goes with its fields. A key that is held presses once.
void VornSettings::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (button && isPlainReturn(*event) && !event->isAutoRepeat())
        button->click();
    else
        QMainWindow::keyPressEvent(event);
}

void VornSettings::keyReleaseEvent(QKeyEvent *event)
{
    // Where a held key repeats with releases, one long press would both leave a page and close.
    if (event->key() != Qt::Key_Escape || event->isAutoRepeat())
        return event->ignore();
    event->accept();
    if (escapeKey.endPressTakenInFront())
        return;
    if (currentTab != menuTab)
        showTab(menuTab);
    else
        close();
}
