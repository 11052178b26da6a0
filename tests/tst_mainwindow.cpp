#include "frame/qtVersions.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
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
#include "tests/support/DeviceTest.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/pages.h"

#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QStyleOptionButton>
#include <QTabWidget>

#include <memory>

using support::child;
using support::pageAt;
using support::PageRow;
using support::pageRows;

namespace {

/** A page whose menu entry the window may dim. */
struct EntryRow {
    int index;
    const char *name;
    const char *greyPicture; ///< null where the picture stays
    const char *toolTip;     ///< of the absent feature
};

constexpr EntryRow entryRows[] = {
    {3, "display", "backgroundGrey.png", "Display is not available"},
    {5, "heater", "heaterGrey.png", "Heater is not available"},
    {8, "buzzer", nullptr, "Buzzer is not available"},
    {9, "can", nullptr, "Can is not available"},
    {11, "digitalIO", nullptr, "Digital Input is not available"},
    {12, "lightSensor", "FullGrey.png", "Light sensor is not available"},
    {13, "touch", "tabletGrey.png", "Touch Screen is not available"},
    {15, "telematics", "GlobeGrey.png", "Telematics module is not available"},
};

QString latin1(const char *text)
{
    return QLatin1String(text);
}

QImage picture(const QIcon &icon)
{
    return icon.pixmap(QSize(60, 60)).toImage();
}

QImage resourcePicture(const char *name)
{
    return picture(QIcon(latin1(":/VornSettings/Resources/") + latin1(name)));
}

tabMenuDlg *menuOf(const VornSettings &window)
{
    return child<tabMenuDlg>(&window, "tabMenu");
}

QList<tabDlg *> pagesOf(const VornSettings &window)
{
    return child<QWidget>(&window, "tabWidget")
        ->findChildren<tabDlg *>(QString(), Qt::FindDirectChildrenOnly);
}

/** The page that shows, null if it isn't exactly one. */
tabDlg *visiblePage(const VornSettings &window)
{
    tabDlg *visible = nullptr;
    int count = 0;
    for (tabDlg *page : pagesOf(window)) {
        if (page->isVisibleTo(&window)) {
            visible = page;
            ++count;
        }
    }
    return count == 1 ? visible : nullptr;
}

QString visibleClass(const VornSettings &window)
{
    const tabDlg *page = visiblePage(window);
    return page ? latin1(page->metaObject()->className()) : QString();
}

QString titleStrip(const VornSettings &window)
{
    return child<QLabel>(&window, "tabTitle")->text();
}

enum class Feature { Present, Absent, Failing };

} // namespace

Q_DECLARE_METATYPE(Feature)

class TestMainWindow : public DeviceTest
{
    Q_OBJECT

private:
    support::SkippedPauses pauses;

    using MakePage = std::function<tabDlg *()>;

    template <typename Page>
    static MakePage maker()
    {
        return [] { return new Page; };
    }

    /** Makers of the pages in the order of pageRows. */
    static QList<MakePage> makers()
    {
        return {maker<tabMenuDlg>(), maker<tabVersionDlg>(), maker<tabTempDlg>(),
            maker<tabBacklightDlg>(), maker<tabPowerDlg>(), maker<tabSysConfDlg>(),
            maker<tabAdvancedDlg>(), maker<tabLEDDlg>(), maker<tabBuzzerDlg>(),
            maker<tabAboutDlg>(), maker<tabCanDlg>(), maker<tabDigIODlg>(),
            maker<tabLightSensorDlg>(), maker<tabTouchDlg>(), maker<tabOnOffDlg>(),
            maker<tabTelematicsDlg>()};
    }

    void setFeature(const char *property, const char *operation, Feature feature)
    {
        if (feature == Feature::Absent)
            setUnit(latin1(property), QStringLiteral("0"));
        if (feature == Feature::Failing)
            fault(latin1(operation), 5);
    }

    void setHeater(Feature feature)
    {
        if (feature != Feature::Present)
            fault(QStringLiteral("Config_getHeatingTempLimit"), feature == Feature::Absent ? 2 : 5);
    }

    /** One line for each entry that may be dimmed: what its button and its label look like. */
    static QStringList entries(const VornSettings &window)
    {
        QStringList lines;
        for (const EntryRow &row : entryRows) {
            const PageRow &page = pageAt(row.index);
            const auto *button = child<QPushButton>(menuOf(window), page.button);
            const auto *label = child<QLabel>(menuOf(window), page.label);
            const QImage icon = picture(button->icon());
            QString shown = QStringLiteral("another picture");
            if (icon == resourcePicture(page.picture))
                shown = latin1(page.picture);
            else if (row.greyPicture && icon == resourcePicture(row.greyPicture))
                shown = latin1(row.greyPicture);
            lines << entryLine(row, button->isEnabled(), shown, button->toolTip(), opacity(button),
                opacity(label));
            if (button->iconSize() != QSize(60, 60))
                lines << QStringLiteral("wrong icon size");
        }
        return lines;
    }

    static QStringList expectedEntries(const QStringList &absent)
    {
        QStringList lines;
        for (const EntryRow &row : entryRows) {
            const bool dimmed = absent.contains(latin1(row.name));
            const char *shown =
                dimmed && row.greyPicture ? row.greyPicture : pageAt(row.index).picture;
            const double expected = dimmed ? 0.5 : 1;
            lines << entryLine(row, !dimmed, latin1(shown),
                dimmed ? latin1(row.toolTip) : QString(), expected, expected);
        }
        return lines;
    }

    static double opacity(const QWidget *widget)
    {
        const auto *effect = qobject_cast<QGraphicsOpacityEffect *>(widget->graphicsEffect());
        return effect ? effect->opacity() : 1;
    }

    static QString entryLine(const EntryRow &row, bool enabled, const QString &shown,
        const QString &toolTip, double button, double label)
    {
        return QStringLiteral("%1: %2, %3, tool-tip '%4', opacity %5 and %6")
            .arg(latin1(row.name), enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"),
                shown, toolTip, QString::number(button), QString::number(label));
    }

    /** Names of the visible widgets that show less than they hold. */
    static QStringList clippedIn(const tabDlg *page)
    {
        QStringList names;
        for (const QWidget *widget : page->findChildren<QWidget *>()) {
            if (widget->isVisible() && (isCut(widget) || textIsCut(widget)))
                names << widget->objectName();
        }
        return names;
    }

    /** Whether the widget reaches out of its surroundings; what scrolls may. */
    static bool isCut(const QWidget *widget)
    {
        if (widget->isWindow() || qobject_cast<QAbstractScrollArea *>(widget->parentWidget()))
            return false;
        for (const QWidget *above = widget; above; above = above->parentWidget()) {
            if (qobject_cast<const QAbstractScrollArea *>(above))
                return false;
        }
        return !widget->parentWidget()->rect().contains(widget->geometry());
    }

    static QSize textSize(const QWidget *widget, const QString &text)
    {
        const QStringList rows = text.split(QLatin1Char('\n'));
        int width = 0;
        for (const QString &line : rows)
            width = std::max(width, widget->fontMetrics().horizontalAdvance(line));
        return {width, int(rows.size()) * widget->fontMetrics().height()};
    }

    static bool textIsCut(const QWidget *widget)
    {
        if (const auto *label = qobject_cast<const QLabel *>(widget)) {
            if (label->text().isEmpty())
                return false;
            if (label->wordWrap())
                return label->heightForWidth(label->width()) > label->height();
            const QSize text = Qt::mightBeRichText(label->text()) ? label->sizeHint()
                                                                  : textSize(label, label->text());
            return text.width() > label->width() || text.height() > label->height();
        }
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        if (!button || button->text().isEmpty())
            return false;
        QRect room = button->rect();
        if (qobject_cast<const QCheckBox *>(button)) {
            QStyleOptionButton option;
            option.initFrom(button);
            room = button->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, button);
        }
        const QSize text = textSize(button, button->text());
        return text.width() > room.width() || text.height() > button->height();
    }

    static QString classAt(VornSettings &window, int index)
    {
        window.showTab(0);
        window.showTab(index);
        return visibleClass(window);
    }

private slots:
    void initTestCase() { setApplicationLook(); }

    // Without a battery no thread outlives its window.
    void init()
    {
        DeviceTest::init();
        setUnit(QStringLiteral("Battery.available"), QStringLiteral("0"));
    }

    // The form

    void widgets_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QRect>("place");
        QTest::newRow("centralWidget") << QStringLiteral("centralWidget")
                                       << QStringLiteral("QWidget") << QRect(0, 0, 600, 435);
        QTest::newRow("tabTitle") << QStringLiteral("tabTitle") << QStringLiteral("QLabel")
                                  << QRect(0, 0, 600, 51);
        QTest::newRow("tabWidget")
            << QStringLiteral("tabWidget") << QStringLiteral("QWidget") << QRect(0, 51, 600, 330);
        QTest::newRow("label") << QStringLiteral("label") << QStringLiteral("QLabel")
                               << QRect(-3, 373, 286, 71);
        QTest::newRow("buttonMenu") << QStringLiteral("buttonMenu") << QStringLiteral("QPushButton")
                                    << QRect(340, 387, 111, 41);
        QTest::newRow("buttonExit") << QStringLiteral("buttonExit") << QStringLiteral("QPushButton")
                                    << QRect(470, 387, 111, 41);
    }

    void widgets()
    {
        QFETCH(QString, name);
        QFETCH(QString, kind);
        QFETCH(QRect, place);
        VornSettings window;
        window.show();
        const QWidget *central = window.centralWidget();
        const QWidget *widget = name == central->objectName() ? central
                                                              : central->findChild<QWidget *>(name,
                                                                    Qt::FindDirectChildrenOnly);
        QVERIFY(widget);
        QCOMPARE(latin1(widget->metaObject()->className()), kind);
        QCOMPARE(widget->geometry(), place);
    }

    void windowForm()
    {
        VornSettings window;
        QCOMPARE(window.objectName(), QStringLiteral("VornSettingsClass"));
        QCOMPARE(window.windowTitle(), QStringLiteral("Settings"));
        QCOMPARE(picture(window.windowIcon()), resourcePicture("vorn.png"));
        QCOMPARE(window.windowModality(), Qt::NonModal);
        QVERIFY(window.autoFillBackground());
        QVERIFY(!window.parentWidget());
        QVERIFY(!window.isVisible());
        QCOMPARE(child<QPushButton>(&window, "buttonMenu")->text(), QStringLiteral("Menu"));
        QCOMPARE(child<QPushButton>(&window, "buttonExit")->text(), QStringLiteral("Exit"));
        const auto *title = child<QLabel>(&window, "tabTitle");
        QCOMPARE(title->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
        const auto *logo = window.centralWidget()->findChild<QLabel *>(
            QStringLiteral("label"), Qt::FindDirectChildrenOnly);
        QCOMPARE(logo->text(), QString());
        QVERIFY(logo->hasScaledContents());
        QCOMPARE(logo->pixmap(Qt::ReturnByValue).toImage(),
            QImage(QStringLiteral(":/VornSettings/Resources/logo.png"))
                .convertToFormat(logo->pixmap(Qt::ReturnByValue).toImage().format()));
    }

    // The scale of the screens is known before the application is made, so another one shows it.
    void logoIsSharpOnFineScreens()
    {
        if (qApp->devicePixelRatio() == 1) {
            QProcess fine;
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
            fine.setProcessEnvironment(environment);
            fine.setProcessChannelMode(QProcess::ForwardedChannels);
            fine.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("logoIsSharpOnFineScreens")});
            QVERIFY(fine.waitForFinished(60'000));
            QCOMPARE(fine.exitCode(), 0);
            return;
        }
        const VornSettings window;
        const auto logo =
            child<QLabel>(window.centralWidget(), "label")->pixmap(Qt::ReturnByValue).toImage();
        auto fineOne = QImage(QStringLiteral(":/VornSettings/Resources/logo@2x.png"))
                           .convertToFormat(logo.format());
        fineOne.setDevicePixelRatio(logo.devicePixelRatio()); // Qt 5 takes 2 from the name
        QCOMPARE(logo, fineOne);
    }

    void titleBeforeFirstPage()
    {
        QMainWindow window;
        Ui::VornSettingsClass form;
        // The form wires its buttons to slots that only the real window has.
        window.blockSignals(true);
        form.setupUi(&window);
        takeWarnings();
        QCOMPARE(form.tabTitle->text(), QStringLiteral("TextLabel"));
    }

    void palette_data()
    {
        QTest::addColumn<QPalette::ColorGroup>("group");
        QTest::addColumn<QColor>("base");
        QTest::newRow("active") << QPalette::Active << QColor(Qt::white);
        QTest::newRow("inactive") << QPalette::Inactive << QColor(Qt::white);
        QTest::newRow("disabled") << QPalette::Disabled << QColor(25, 23, 28);
    }

    void palette()
    {
        QFETCH(QPalette::ColorGroup, group);
        QFETCH(QColor, base);
        VornSettings window;
        QCOMPARE(window.palette().color(group, QPalette::Window), QColor(25, 23, 28));
        QCOMPARE(window.palette().color(group, QPalette::Base), base);
    }

    void slotsInOrder()
    {
        const auto &meta = VornSettings::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(names, QStringList({QStringLiteral("exit()"), QStringLiteral("showTab(int)"),
                            QStringLiteral("menuClicked()")}));
    }

    void cannotBeResized()
    {
        VornSettings window;
        window.show();
        window.resize(800, 600);
        QCOMPARE(window.size(), QSize(600, 435));
        window.resize(100, 100);
        QCOMPARE(window.size(), QSize(600, 435));
        window.showMaximized();
        QCOMPARE(window.minimumSize(), window.maximumSize());
    }

    // What the unit has

    void capabilities_data()
    {
        QTest::addColumn<Feature>("display");
        QTest::addColumn<Feature>("touch");
        QTest::addColumn<Feature>("others");
        const auto word = [](Feature feature) {
            return feature == Feature::Present  ? "there"
                   : feature == Feature::Absent ? "absent"
                                                : "failing";
        };
        const auto all = {Feature::Present, Feature::Absent, Feature::Failing};
        for (const auto display : all)
            for (const auto touch : all)
                for (const auto others : {Feature::Present, Feature::Failing})
                    QTest::addRow("display %s, touch %s, others %s or absent", word(display),
                        word(touch), word(others))
                        << display << touch << others;
    }

    void capabilities()
    {
        QFETCH(Feature, display);
        QFETCH(Feature, touch);
        QFETCH(Feature, others);
        for (unsigned absent = 0; absent < 16; ++absent) {
            const auto other = [=](unsigned bit) {
                return absent & bit ? Feature::Absent : others;
            };
            compareCombination(display, touch, other(1), other(2), other(4), other(8));
        }
    }

    void refusedQueries_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("absent");
        const auto add = [](const char *operation, int code, const char *absent) {
            QTest::addRow("%s, code %d", operation, code)
                << latin1(operation) << code << latin1(absent);
        };
        for (const int code : {1, 2, 3, 5, 18, 20, -1}) {
            add("Hardware_hasGsm", code, "");
            add("Hardware_getCanCount", code, "");
            add("Hardware_getDigitalInputCount", code, "");
            add("Hardware_hasDisplay", code, "");
            add("Hardware_hasTouchscreen", code, "");
            add("Config_getHeatingTempLimit", code, code == 2 ? "heater" : "");
            add("Telematics_getAvailable", code, "telematics");
        }
    }

    void refusedQueries()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        QFETCH(QString, absent);
        fault(operation, code);
        VornSettings window;
        QCOMPARE(entries(window), expectedEntries({absent}));
        QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
    }

    // A query that fails says nothing, not even if its out value were left at "absent".
    void everyQueryRefused()
    {
        for (const auto *operation : {"Hardware_hasGsm", "Hardware_getCanCount",
                 "Hardware_getDigitalInputCount", "Hardware_hasDisplay", "Hardware_hasTouchscreen",
                 "Config_getHeatingTempLimit", "Telematics_getAvailable"})
            fault(latin1(operation), 7);
        VornSettings window;
        QCOMPARE(entries(window), expectedEntries({QStringLiteral("telematics")}));
    }

    void gsmDoesNotMatter()
    {
        setUnit(QStringLiteral("Hardware.hasGsm"), QStringLiteral("0"));
        VornSettings window;
        QCOMPARE(entries(window), expectedEntries({}));
        QCOMPARE(classAt(window, 15), QStringLiteral("tabTelematicsDlg"));
    }

    void unknownTelematicsIsNone()
    {
        for (const auto *available : {"2", "255"}) {
            setUnit(QStringLiteral("Telematics.available"), latin1(available));
            VornSettings window;
            QCOMPARE(entries(window), expectedEntries({QStringLiteral("telematics")}));
            QCOMPARE(classAt(window, 15), QStringLiteral("tabDlg"));
        }
    }

    // Pages

    void pageAtIndex_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < int(std::size(pageRows)); ++row)
            QTest::newRow(pageRows[row].className) << row;
    }

    void pageAtIndex()
    {
        QFETCH(int, row);
        const PageRow &expected = pageRows[row];
        VornSettings window;
        window.show();
        if (expected.button)
            QTest::mouseClick(child<QPushButton>(&window, expected.button), Qt::LeftButton);
        QCOMPARE(visibleClass(window), latin1(expected.className));
        tabDlg *page = visiblePage(window);
        QVERIFY(!page->isWindow());
        if (expected.button) {
            QCOMPARE(child<QLabel>(page, "icon")->pixmap(Qt::ReturnByValue).toImage(),
                picture(child<QPushButton>(&window, expected.button)->icon()));
        }
        QCOMPARE(page->geometry(), QRect(0, 0, 600, 320));
        QCOMPARE(page->windowTitle(), latin1(expected.title));
        QCOMPARE(titleStrip(window), latin1(expected.title));
        QTest::mouseClick(child<QPushButton>(&window, "buttonMenu"), Qt::LeftButton);
        QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
        QCOMPARE(titleStrip(window), QStringLiteral("Menu"));
        QCOMPARE(page->geometry(), QRect(0, 0, 600, 320));
        dialogs.take();
    }

    void pagesInOrder()
    {
        VornSettings window;
        const QLayout *layout = child<QWidget>(&window, "tabWidget")->layout();
        QVERIFY(qobject_cast<const QVBoxLayout *>(layout));
        QCOMPARE(layout->count(), int(std::size(pageRows)));
        for (int i = 0; i < layout->count(); ++i)
            QCOMPARE(latin1(layout->itemAt(i)->widget()->metaObject()->className()),
                latin1(pageRows[i].className));
    }

    // Each page gives the calls of its construction when built alone; the window's start is its own
    // queries and those calls, one page after the other, and its end gives all handles back.
    void startAndEnd()
    {
        QStringList start;
        QStringList end{QStringLiteral("Hardware_release()")};
        QList<QStringList> built;
        for (const MakePage &make : makers()) {
            std::unique_ptr<tabDlg> page(make());
            built << mainThreadCalls();
            page.reset();
            end << mainThreadCalls();
        }
        start << QStringLiteral("Hardware_create()")
              << QStringLiteral("Hardware_hasGsm() = 0 [true]")
              << QStringLiteral("Hardware_getCanCount() = 0 [4]")
              << QStringLiteral("Hardware_getDigitalInputCount() = 0 [4]")
              << QStringLiteral("Hardware_hasDisplay() = 0 [true]")
              << QStringLiteral("Hardware_hasTouchscreen() = 0 [true]")
              << QStringLiteral("Config_create()")
              << QStringLiteral("Config_getHeatingTempLimit() = 0 [-10]")
              << QStringLiteral("Config_release()");
        const QStringList telematics = built.takeLast();
        for (const QStringList &page : built)
            start << page;
        start << QStringLiteral("Telematics_create()")
              << QStringLiteral("Telematics_getAvailable() = 0 [1]")
              << QStringLiteral("Telematics_release()") << telematics;

        auto window = std::make_unique<VornSettings>();
        QCOMPARE(mainThreadCalls(), start);
        window.reset();
        QCOMPARE(mainThreadCalls(), end);
    }

    void startOfBareUnit()
    {
        for (const auto *property : {"Hardware.hasDisplay", "Hardware.canCount",
                 "Hardware.digitalInputCount", "Telematics.available"})
            setUnit(latin1(property), QStringLiteral("0"));
        fault(QStringLiteral("Config_getHeatingTempLimit"), 2);
        VornSettings window;
        const QStringList calls = mainThreadCalls();
        const QStringList start{QStringLiteral("Hardware_create()"),
            QStringLiteral("Hardware_hasGsm() = 0 [true]"),
            QStringLiteral("Hardware_getCanCount() = 0 [0]"),
            QStringLiteral("Hardware_getDigitalInputCount() = 0 [0]"),
            QStringLiteral("Hardware_hasDisplay() = 0 [false]"), QStringLiteral("Config_create()"),
            QStringLiteral("Config_getHeatingTempLimit() = 2"), QStringLiteral("Config_release()")};
        QCOMPARE(calls.mid(0, start.size()), start);
        QCOMPARE(
            calls.mid(calls.size() - 3), QStringList({QStringLiteral("Telematics_create()"),
                                             QStringLiteral("Telematics_getAvailable() = 0 [0]"),
                                             QStringLiteral("Telematics_release()")}));
    }

    void withoutDisplay()
    {
        setUnit(QStringLiteral("Hardware.hasDisplay"), QStringLiteral("0"));
        VornSettings window;
        // The buzzer's stand-in takes the place of the display's, which stays hidden in the layout.
        QCOMPARE(classAt(window, 3), QStringLiteral("tabDlg"));
        QList<tabDlg *> plain;
        for (tabDlg *page : pagesOf(window)) {
            if (latin1(page->metaObject()->className()) == QLatin1String("tabDlg"))
                plain << page;
        }
        QCOMPARE(plain.size(), 4);
        QCOMPARE(visiblePage(window), plain.at(1));
        QVERIFY(plain.at(0)->isHidden());
        QCOMPARE(titleStrip(window), QString());

        window.showTab(8);
        QCOMPARE(visiblePage(window), plain.at(1));
        window.showTab(0);
        window.showTab(8);
        QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
        QCOMPARE(titleStrip(window), QStringLiteral("Menu"));
    }

    // The look of a page is worked out when it shows, and is the same whether the window was drawn
    // before that or not.
    void hiddenPagesWaitForTheirLook()
    {
        VornSettings window;
        window.show();
        QCoreApplication::processEvents();
        const QImage menu = window.grab().toImage();
        const auto *box = child<QSpinBox>(&window, "spinBoxPulses");
        const auto *label = child<QLabel>(box->parentWidget(), "label_5");
        QVERIFY(!label->font().bold());
        window.showTab(7);
        QVERIFY(label->font().bold());
        QStyleOptionSpinBox option;
        option.initFrom(box);
        option.subControls = QStyle::SC_All;
        QCOMPARE(box->findChild<QLineEdit *>()->geometry(),
            box->style()->subControlRect(
                QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxEditField, box));
        window.showTab(0);
        QCOMPARE(window.grab().toImage(), menu);
        dialogs.take();
    }

    /** A second look at everything, which a new style sheet brings, finds nothing left to do. */
    void pagesShowTheirWholeLook()
    {
        QApplication::setCursorFlashTime(
            0); // else it is a matter of luck whether a field shows one
        VornSettings window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVector<QImage> pictures;
        for (int index = 0; index < 16; ++index) {
            window.showTab(index);
            pictures << window.grab().toImage();
        }
        window.setStyleSheet(window.styleSheet() + QLatin1Char('\n'));
        for (int index = 0; index < 16; ++index) {
            window.showTab(index);
            QVERIFY2(
                window.grab().toImage() == pictures[index], QByteArray::number(index).constData());
        }
        dialogs.take();
    }

    void dimmedEntryLeadsNowhere()
    {
        setUnit(QStringLiteral("Hardware.hasDisplay"), QStringLiteral("0"));
        VornSettings window;
        window.show();
        for (const auto *name : {"pushButtonDisplay", "pushButtonBuzzer", "pushButton"}) {
            QTest::mouseClick(child<QPushButton>(&window, name), Qt::LeftButton);
            QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
        }
    }

    void currentPageShowsAgain()
    {
        struct Watch : QObject {
            QList<QEvent::Type> seen;
            bool eventFilter(QObject *, QEvent *event) override
            {
                if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
                    seen << event->type();
                return false;
            }
        } watch;
        VornSettings window;
        window.show();
        window.showTab(1);
        visiblePage(window)->installEventFilter(&watch);
        window.showTab(1);
        QCOMPARE(watch.seen, QList<QEvent::Type>({QEvent::Hide, QEvent::Show}));
        QCOMPARE(visibleClass(window), QStringLiteral("tabVersionDlg"));
        window.menuClicked();
        QCOMPARE(watch.seen.constLast(), QEvent::Hide);
        dialogs.take();
    }

    void laterPageTakesIndex()
    {
        VornSettings window;
        window.show();
        const auto pages = pagesOf(window).size();
        auto *page = new tabDlg;
        page->setParent(child<QWidget>(&window, "tabWidget"));
        page->setWindowTitle(QStringLiteral("Another"));
        page->show();
        window.addTab(page, 1);
        QVERIFY(page->isHidden());
        QCOMPARE(pagesOf(window).size(), pages + 1);
        window.showTab(1);
        QCOMPARE(visiblePage(window), page);
        QCOMPARE(titleStrip(window), QStringLiteral("Another"));
    }

    // With the font that stands for Arial here, every text fits its place, and every place its
    // surroundings.
    void nothingIsClipped_data() { pageAtIndex_data(); }

    void nothingIsClipped()
    {
        QFETCH(int, row);
        VornSettings window;
        window.show();
        window.showTab(pageRows[row].index);
        tabDlg *page = visiblePage(window);
        QStringList clipped = clippedIn(page);
        for (auto *tabs : page->findChildren<QTabWidget *>()) {
            for (int tab = 1; tab < tabs->count(); ++tab) {
                tabs->setCurrentIndex(tab);
                clipped << clippedIn(page);
            }
        }
        clipped.removeDuplicates();
        QCOMPARE(clipped.join(QLatin1Char(' ')), QString());
        dialogs.take();
    }

    // Keys and buttons

    void escape()
    {
        VornSettings window;
        window.show();
        window.showTab(14);
        QTest::keyClick(visiblePage(window), Qt::Key_Escape);
        QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
        QVERIFY(window.isVisible());
        window.showTab(14);
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
        QVERIFY(window.isVisible());
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!window.isVisible());
        dialogs.take();
    }

    // The press alone leaves the page where it is.
    void escapeGoesByTheRelease()
    {
        VornSettings window;
        window.show();
        for (const int index : {14, 0}) {
            window.showTab(index);
            tabDlg *page = visiblePage(window);
            QTest::keyPress(page, Qt::Key_Escape);
            QCOMPARE(visiblePage(window), page);
            QVERIFY(page->isVisible());
            QTest::keyRelease(page, Qt::Key_Escape);
            QVERIFY(!page->isVisible());
        }
        QVERIFY(!window.isVisible());
        dialogs.take();
    }

    void escapeOnMenuPage()
    {
        VornSettings window;
        window.show();
        QTest::keyClick(child<QPushButton>(&window, "pushButtonLed"), Qt::Key_Escape);
        QVERIFY(!window.isVisible());
    }

    void keyReleases_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("Escape") << int(Qt::Key_Escape) << true;
        for (const int key : {int(Qt::Key_Return), int(Qt::Key_Enter), int(Qt::Key_Space),
                 int(Qt::Key_Backspace), int(Qt::Key_Home), int(Qt::Key_F1), int(Qt::Key_A)})
            QTest::addRow("%x", unsigned(key)) << key << false;
    }

    void keyReleases()
    {
        QFETCH(int, key);
        QFETCH(bool, accepted);
        VornSettings window;
        window.show();
        window.showTab(14);
        QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier);
        event.setAccepted(!accepted);
        QCoreApplication::sendEvent(&window, &event);
        QCOMPARE(event.isAccepted(), accepted);
        QCOMPARE(visibleClass(window),
            accepted ? QStringLiteral("tabMenuDlg") : QStringLiteral("tabOnOffDlg"));
        QVERIFY(window.isVisible());
        dialogs.take();
    }

    // X11 repeats a held key with releases of its own: they must not go on from the menu and close.
    void heldEscape()
    {
        VornSettings window;
        window.show();
        window.showTab(14);
        const auto release = [&window](bool repeats) {
            QKeyEvent event(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier, QString(), repeats);
            QCoreApplication::sendEvent(&window, &event);
        };
        release(true);
        QCOMPARE(visibleClass(window), QStringLiteral("tabOnOffDlg"));
        release(false);
        QCOMPARE(visibleClass(window), QStringLiteral("tabMenuDlg"));
        release(true);
        QVERIFY(window.isVisible());
        release(false);
        QVERIFY(!window.isVisible());
        dialogs.take();
    }

    void exitButton()
    {
        VornSettings window;
        window.show();
        QTest::mouseClick(child<QPushButton>(&window, "buttonExit"), Qt::LeftButton);
        QVERIFY(!window.isVisible());
    }

    void exitSlot()
    {
        VornSettings window;
        window.show();
        QVERIFY(QMetaObject::invokeMethod(&window, "exit"));
        QVERIFY(!window.isVisible());
    }

private:
    void compareCombination(Feature display, Feature touch, Feature can, Feature digitalIO,
        Feature heater, Feature telematics)
    {
        useProfile(QStringLiteral("full"));
        setUnit(QStringLiteral("Battery.available"), QStringLiteral("0"));
        setFeature("Hardware.hasDisplay", "Hardware_hasDisplay", display);
        setFeature("Hardware.hasTouchscreen", "Hardware_hasTouchscreen", touch);
        setFeature("Hardware.canCount", "Hardware_getCanCount", can);
        setFeature("Hardware.digitalInputCount", "Hardware_getDigitalInputCount", digitalIO);
        setFeature("Telematics.available", "Telematics_getAvailable", telematics);
        setHeater(heater);
        const bool hasDisplay = display != Feature::Absent;
        QStringList absent;
        if (!hasDisplay)
            absent << QStringLiteral("display") << QStringLiteral("buzzer")
                   << QStringLiteral("lightSensor");
        if (!hasDisplay || touch == Feature::Absent)
            absent << QStringLiteral("touch");
        if (can == Feature::Absent)
            absent << QStringLiteral("can");
        if (digitalIO == Feature::Absent)
            absent << QStringLiteral("digitalIO");
        if (heater == Feature::Absent)
            absent << QStringLiteral("heater");
        if (telematics != Feature::Present)
            absent << QStringLiteral("telematics");
        VornSettings window;
        // Without a display nobody asks for a touch screen; the queries are the first calls.
        const QStringList queries = calls().mid(0, 6).filter(QStringLiteral("hasTouchscreen"));
        QCOMPARE(queries.size(), hasDisplay ? 1 : 0);
        QCOMPARE(entries(window), expectedEntries(absent));
    }
};

int main(int argc, char *argv[])
{
    support::prepareEnvironment();
    qtVersions::scaleWithScreen(); // as the program does
    QApplication application(argc, argv);
    TestMainWindow test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_mainwindow.moc"
