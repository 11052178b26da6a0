#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/window/ContentPlace.h"
#include "frame/window/EscapeKey.h"
#include "frame/window/FocusRing.h"
#include "frame/window/TabIndex.h"
#include "ui_VornSettings.h"

#include <QMainWindow>

#include <array>

class QLabel;
class QPushButton;
class QVBoxLayout;
class tabDlg;

/**
 * The one window: title strip, page area, and the buttons "Menu" and "Exit". It owns all pages,
 * which live as long as it does and of which one shows at a time, and it carries the style sheet
 * that they inherit. Main thread only.
 */
class VornSettings : public QMainWindow
{
    Q_OBJECT

public:
    /** Of the window and its content, pixels. Only a screen that has no room for it, or a window
     *  manager, makes the window another size. */
    static constexpr QSize wholeSize{600, 435};

    /** Asks the unit what exists, builds all pages and shows the menu. Says nothing of failed
     *  queries: what can't be asked counts as present, but for the telematics board. */
    explicit VornSettings(QWidget *parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());

    /** Hides the page and takes it over under that index, 0 to 15. A former page of the index stays
     *  alive in the page area, out of reach. */
    void addTab(tabDlg *page, int index);

public slots:
    /** Closes the window, which ends the program. */
    void exit();
    /** Shows that page instead of the present one; does nothing if there is none, index 0 to 15. */
    void showTab(int index);
    /** Shows the menu. */
    void menuClicked();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;

private:
    /** What the unit has of that which not every unit has. */
    struct Features {
        bool can = true;
        bool digitalIO = true;
        bool display = true;
        bool touch = true;
        bool heater = true;
    };
    /** The two widgets of a menu entry, and what a unit without its feature shows there. */
    struct MenuEntry {
        QPushButton *button;
        QLabel *label;
        const char *toolTip;
        const char *greyPicture; ///< file name among the resources, null to keep the icon
    };

    Features askFeatures();
    static bool hasTelematics();
    void buildPages(const Features &has);
    template <typename Page>
    void addPage(int index, const QPushButton *button);
    template <typename Page>
    void addPageIf(bool present, int index, const MenuEntry &entry);
    static void dim(const MenuEntry &entry);
    void leavePolishToShowing();

    EscapeKey escapeKey{this}; // first, since pages may show boxes while they are built
    FocusRing focusRing;
    Form<Ui::VornSettingsClass> ui{this};
    ContentPlace contentPlace{this, {ui->buttonMenu, ui->buttonExit}};
    std::array<tabDlg *, tabCount> tabs{};
    QVBoxLayout *layout; // of ui->tabWidget, from the end of the constructor on
    int currentTab = menuTab;
    DeviceHandle<Hardware_create, Hardware_release> hardware;
};
