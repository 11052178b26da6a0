#include "frame/qtVersions.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "frame/window/tabMenuDlg.h"
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
#include <QTextDocument>

#include <memory>

using namespace support;

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

QImage picture(const QIcon &icon)
{
    return icon.pixmap(QSize(60, 60)).toImage();
}

QImage resourcePicture(const char *name)
{
    return picture(QIcon(":/VornSettings/Resources/"_s + latin1(name)));
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

class MainWindowTest : public DeviceTest
{
    Q_OBJECT

private:
    support::SkippedPauses pauses;

    void setFeature(const char *property, const char *operation, Feature feature)
    {
        if (feature == Feature::Absent)
            setUnit(latin1(property), "0"_s);
        if (feature == Feature::Failing)
            fault(latin1(operation), 5);
    }

    void setHeater(Feature feature)
    {
        if (feature != Feature::Present)
            fault("Config_getHeatingTempLimit"_s, feature == Feature::Absent ? 2 : 5);
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
            QString shown = "another picture"_s;
            if (icon == resourcePicture(page.picture))
                shown = latin1(page.picture);
            else if (row.greyPicture && icon == resourcePicture(row.greyPicture))
                shown = latin1(row.greyPicture);
            lines << entryLine(row, button->isEnabled(), shown, button->toolTip(), opacity(button),
                opacity(label));
            if (button->iconSize() != QSize(60, 60))
                lines << "wrong icon size"_s;
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
        return "%1: %2, %3, tool-tip '%4', opacity %5 and %6"_s.arg(latin1(row.name),
            enabled ? "enabled"_s : "disabled"_s, shown, toolTip, QString::number(button),
            QString::number(label));
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

    /** Without a battery no thread outlives its window. */
    void init()
    {
        DeviceTest::init();
        setUnit("Battery.available"_s, "0"_s);
    }

    // The form

    void widgets_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QRect>("place");
        QTest::newRow("centralWidget") << "centralWidget"_s
                                       << "QWidget"_s << QRect(0, 0, 600, 435);
        QTest::newRow("tabTitle") << "tabTitle"_s
                                  << "QLabel"_s << QRect(0, 0, 600, 51);
        QTest::newRow("tabWidget") << "tabWidget"_s
                                   << "QWidget"_s << QRect(0, 51, 600, 330);
        QTest::newRow("label") << "label"_s
                               << "QLabel"_s << QRect(-3, 373, 286, 71);
        QTest::newRow("buttonMenu") << "buttonMenu"_s
                                    << "QPushButton"_s << QRect(340, 387, 111, 41);
        QTest::newRow("buttonExit") << "buttonExit"_s
                                    << "QPushButton"_s << QRect(470, 387, 111, 41);
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
        QCOMPARE(window.objectName(), "VornSettingsClass"_s);
        QCOMPARE(window.windowTitle(), "Settings"_s);
        QCOMPARE(picture(window.windowIcon()), resourcePicture("vorn.png"));
        QCOMPARE(window.windowModality(), Qt::NonModal);
        QVERIFY(window.autoFillBackground());
        QVERIFY(!window.parentWidget());
        QVERIFY(!window.isVisible());
        QCOMPARE(child<QPushButton>(&window, "buttonMenu")->text(), "Menu"_s);
        QCOMPARE(child<QPushButton>(&window, "buttonExit")->text(), "Exit"_s);
        const auto *title = child<QLabel>(&window, "tabTitle");
        QCOMPARE(title->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
        const auto *logo =
            window.centralWidget()->findChild<QLabel *>("label"_s, Qt::FindDirectChildrenOnly);
        QCOMPARE(logo->text(), QString());
        QVERIFY(logo->hasScaledContents());
        QCOMPARE(logo->pixmap(Qt::ReturnByValue).toImage(),
            QImage(":/VornSettings/Resources/logo.png"_s)
                .convertToFormat(logo->pixmap(Qt::ReturnByValue).toImage().format()));
    }

    /** The scale of the screens is known before the application is made, so another one shows it.
     */
    void logoIsSharpOnFineScreens()
    {
        if (qApp->devicePixelRatio() == 1) {
            QProcess fine;
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert("QT_SCALE_FACTOR"_s, "2"_s);
            fine.setProcessEnvironment(environment);
            fine.setProcessChannelMode(QProcess::ForwardedChannels);
            fine.start(QCoreApplication::applicationFilePath(), {"logoIsSharpOnFineScreens"_s});
            QVERIFY(fine.waitForFinished(60'000));
            QCOMPARE(fine.exitCode(), 0);
            return;
        }
        const VornSettings window;
        const auto logo =
            child<QLabel>(window.centralWidget(), "label")->pixmap(Qt::ReturnByValue).toImage();
        auto fineOne =
            QImage(":/VornSettings/Resources/logo@2x.png"_s).convertToFormat(logo.format());
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
        QCOMPARE(form.tabTitle->text(), "TextLabel"_s);
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
        QCOMPARE(names, QStringList({"exit()"_s, "showTab(int)"_s, "menuClicked()"_s}));
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
        QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
        QStringList pages;
        for (const tabDlg *page : pagesOf(window))
            pages << latin1(page->metaObject()->className());
        QStringList expected;
        for (const PageRow &row : pageRows) {
            const bool stoodInFor = (row.index == 5 && absent == "heater"_s) ||
                                    (row.index == 15 && absent == "telematics"_s);
            expected << (stoodInFor ? "tabDlg"_s : latin1(row.className));
        }
        QCOMPARE(pages, expected);
    }

    /** A query that fails says nothing, not even if its out value were left at "absent". */
    void everyQueryRefused()
    {
        for (const auto *operation : {"Hardware_hasGsm", "Hardware_getCanCount",
                 "Hardware_getDigitalInputCount", "Hardware_hasDisplay", "Hardware_hasTouchscreen",
                 "Config_getHeatingTempLimit", "Telematics_getAvailable"})
            fault(latin1(operation), 7);
        VornSettings window;
        QCOMPARE(entries(window), expectedEntries({"telematics"_s}));
    }

    void gsmDoesNotMatter()
    {
        setUnit("Hardware.hasGsm"_s, "0"_s);
        VornSettings window;
        QCOMPARE(entries(window), expectedEntries({}));
        QCOMPARE(classAt(window, 15), "tabTelematicsDlg"_s);
    }

    void unknownTelematicsIsNone()
    {
        for (const auto *available : {"2", "255"}) {
            setUnit("Telematics.available"_s, latin1(available));
            VornSettings window;
            QCOMPARE(entries(window), expectedEntries({"telematics"_s}));
            QCOMPARE(classAt(window, 15), "tabDlg"_s);
        }
    }

    // Pages

    void pageAtIndex_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < pageCount; ++row)
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
        QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
        QCOMPARE(titleStrip(window), "Menu"_s);
        QCOMPARE(page->geometry(), QRect(0, 0, 600, 320));
        dialogs.take();
    }

    void pagesInOrder()
    {
        VornSettings window;
        const QLayout *layout = child<QWidget>(&window, "tabWidget")->layout();
        QVERIFY(qobject_cast<const QVBoxLayout *>(layout));
        QCOMPARE(layout->count(), pageCount);
        for (int i = 0; i < layout->count(); ++i)
            QCOMPARE(latin1(layout->itemAt(i)->widget()->metaObject()->className()),
                latin1(pageRows[i].className));
    }

    /** Each page gives the calls of its construction when built alone; the window's start is its
     * own queries and those calls, one page after the other, and its end gives all handles back. */
    void startAndEnd()
    {
        QStringList end{"Hardware_release()"_s};
        QList<QStringList> built;
        for (const PageRow &row : pageRows) {
            std::unique_ptr<tabDlg> page = row.make();
            built << mainThreadCalls();
            page.reset();
            end << mainThreadCalls();
        }
        QStringList start{"Hardware_create()"_s, "Hardware_hasGsm() = 0 [true]"_s,
            "Hardware_getCanCount() = 0 [4]"_s, "Hardware_getDigitalInputCount() = 0 [4]"_s,
            "Hardware_hasDisplay() = 0 [true]"_s, "Hardware_hasTouchscreen() = 0 [true]"_s,
            "Config_create()"_s, "Config_getHeatingTempLimit() = 0 [-10]"_s, "Config_release()"_s};
        const QStringList telematics = built.takeLast();
        for (const QStringList &page : built)
            start << page;
        start << "Telematics_create()"_s
              << "Telematics_getAvailable() = 0 [1]"_s
              << "Telematics_release()"_s << telematics;

        auto window = std::make_unique<VornSettings>();
        QCOMPARE(mainThreadCalls(), start);
        window.reset();
        QCOMPARE(mainThreadCalls(), end);
    }

    void startOfBareUnit()
    {
        for (const auto *property : {"Hardware.hasDisplay", "Hardware.canCount",
                 "Hardware.digitalInputCount", "Telematics.available"})
            setUnit(latin1(property), "0"_s);
        fault("Config_getHeatingTempLimit"_s, 2);
        VornSettings window;
        const QStringList calls = mainThreadCalls();
        const QStringList start{"Hardware_create()"_s, "Hardware_hasGsm() = 0 [true]"_s,
            "Hardware_getCanCount() = 0 [0]"_s, "Hardware_getDigitalInputCount() = 0 [0]"_s,
            "Hardware_hasDisplay() = 0 [false]"_s, "Config_create()"_s,
            "Config_getHeatingTempLimit() = 2"_s, "Config_release()"_s};
        QCOMPARE(calls.mid(0, start.size()), start);
        QCOMPARE(calls.mid(calls.size() - 3),
            QStringList({"Telematics_create()"_s, "Telematics_getAvailable() = 0 [0]"_s,
                "Telematics_release()"_s}));
    }

    void withoutDisplay()
    {
        setUnit("Hardware.hasDisplay"_s, "0"_s);
        VornSettings window;
        // The buzzer's stand-in takes the place of the display's, which stays hidden in the layout.
        QCOMPARE(classAt(window, 3), "tabDlg"_s);
        QList<tabDlg *> plain;
        for (tabDlg *page : pagesOf(window)) {
            if (latin1(page->metaObject()->className()) == "tabDlg"_s)
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
        QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
        QCOMPARE(titleStrip(window), "Menu"_s);
    }

    /** The look of a page is worked out when it shows, and is the same whether the window was drawn
     * before that or not. */
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

    /** A page that has something to tell when it shows does so below the former title. */
    void titleFollowsThePage()
    {
        fault("Versions_getVornAuxVersion"_s, 5);
        VornSettings window;
        window.show();
        QString title;
        QString shown;
        dialogs.plan([&](QDialog *box) {
            title = titleStrip(window);
            shown = visibleClass(window);
            box->accept();
        });
        window.showTab(1);
        QCOMPARE(dialogs.take().size(), 1);
        QCOMPARE(title, "Menu"_s);
        QCOMPARE(shown, "tabVersionDlg"_s);
        QCOMPARE(titleStrip(window), "Version"_s);
    }

    void dimmedEntryLeadsNowhere()
    {
        setUnit("Hardware.hasDisplay"_s, "0"_s);
        VornSettings window;
        window.show();
        for (const auto *name : {"pushButtonDisplay", "pushButtonBuzzer", "pushButton"}) {
            QTest::mouseClick(child<QPushButton>(&window, name), Qt::LeftButton);
            QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
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
        QCOMPARE(visibleClass(window), "tabVersionDlg"_s);
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
        page->setWindowTitle("Another"_s);
        page->show();
        window.addTab(page, 1);
        QVERIFY(page->isHidden());
        QCOMPARE(pagesOf(window).size(), pages + 1);
        window.showTab(1);
        QCOMPARE(visiblePage(window), page);
        QCOMPARE(titleStrip(window), "Another"_s);
    }

    /** With the font that stands for Arial here, every text fits its place, and every place its
     * surroundings. */
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
        QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
        QVERIFY(window.isVisible());
        window.showTab(14);
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
        QVERIFY(window.isVisible());
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!window.isVisible());
        dialogs.take();
    }

    /** The press alone leaves the page where it is. */
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
        QCOMPARE(visibleClass(window), accepted ? "tabMenuDlg"_s : "tabOnOffDlg"_s);
        QVERIFY(window.isVisible());
        dialogs.take();
    }

    /** X11 repeats a held key with releases of its own: they must not go on from the menu and
     * close. */
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
        QCOMPARE(visibleClass(window), "tabOnOffDlg"_s);
        release(false);
        QCOMPARE(visibleClass(window), "tabMenuDlg"_s);
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
        useProfile("full"_s);
        setUnit("Battery.available"_s, "0"_s);
        setFeature("Hardware.hasDisplay", "Hardware_hasDisplay", display);
        setFeature("Hardware.hasTouchscreen", "Hardware_hasTouchscreen", touch);
        setFeature("Hardware.canCount", "Hardware_getCanCount", can);
        setFeature("Hardware.digitalInputCount", "Hardware_getDigitalInputCount", digitalIO);
        setFeature("Telematics.available", "Telematics_getAvailable", telematics);
        setHeater(heater);
        const bool hasDisplay = display != Feature::Absent;
        QStringList absent;
        if (!hasDisplay)
            absent << "display"_s
                   << "buzzer"_s
                   << "lightSensor"_s;
        if (!hasDisplay || touch == Feature::Absent)
            absent << "touch"_s;
        if (can == Feature::Absent)
            absent << "can"_s;
        if (digitalIO == Feature::Absent)
            absent << "digitalIO"_s;
        if (heater == Feature::Absent)
            absent << "heater"_s;
        if (telematics != Feature::Present)
            absent << "telematics"_s;
        VornSettings window;
        // Without a display nobody asks for a touch screen; the queries are the first calls.
        const QStringList queries = calls().mid(0, 6).filter("hasTouchscreen"_s);
        QCOMPARE(queries.size(), hasDisplay ? 1 : 0);
        QCOMPARE(entries(window), expectedEntries(absent));
    }
};

int main(int argc, char *argv[])
{
    support::prepareEnvironment();
    qtVersions::scaleWithScreen(); // as the program does
    QApplication application(argc, argv);
    MainWindowTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_mainwindow.moc"
