#include "frame/tabDlg.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/SkippedPauses.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLCDNumber>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOption>
#include <QTabBar>
#include <QTabWidget>
#include <QToolTip>

using namespace support;

namespace {

using Make = std::function<QWidget *()>;

const QColor amberTop(255, 212, 73);
const QColor amberBottom(255, 141, 0);
const QColor greyTop(173, 173, 173);
const QColor greyBottom(95, 95, 95);
const QColor pageTop(187, 187, 187);
const QColor pageBottom(79, 79, 79);

template <typename Widget>
Make plain()
{
    return [] { return new Widget; };
}

bool near(const QColor &one, const QColor &other, int tolerance)
{
    return qAbs(one.red() - other.red()) <= tolerance &&
           qAbs(one.green() - other.green()) <= tolerance &&
           qAbs(one.blue() - other.blue()) <= tolerance;
}

/** What a dark mark or text on a lighter ground covers. */
QRect darkPart(const QImage &image)
{
    QRect dark;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 60)
                dark |= QRect(x, y, 1, 1);
        }
    }
    return dark;
}

/** The real window with an empty page that shows. */
class Stage
{
public:
    Stage()
    {
        window.addTab(page, 1);
        window.show();
        window.showTab(1);
    }

    template <typename Widget>
    Widget *place(Widget *widget, const QRect &where = QRect(50, 100, 200, 50))
    {
        widget->setParent(page);
        widget->setGeometry(where);
        widget->show();
        return widget;
    }

    VornSettings window;
    tabDlg *page = new tabDlg;
};

} // namespace

Q_DECLARE_METATYPE(Make)

/** The sheet as it comes out on real widgets of a page in the real window. */
class StyleSheetTest : public DeviceTest
{
    Q_OBJECT

private:
    SkippedPauses pauses;

    static void verifyNear(const QColor &seen, const QColor &expected, int tolerance = 16)
    {
        QVERIFY2(near(seen, expected, tolerance),
            qPrintable(seen.name() + " instead of "_s + expected.name()));
    }

private slots:
    void initTestCase() { setApplicationLook(); }

    /** Without a battery no thread outlives its window. */
    void init()
    {
        DeviceTest::init();
        setUnit("Battery.available"_s, "0"_s);
    }

    /** Pictures of the sheet are there, but for those that it has never had. */
    void pictures()
    {
        Stage stage;
        QFile file(":/VornSettings/Resources/style.qss"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString sheet = QString::fromUtf8(file.readAll());
        QCOMPARE(stage.window.styleSheet(), sheet);
        static const QRegularExpression url("url\\(\"([^\"]+)\"\\)"_s);
        QStringList missing;
        auto match = url.globalMatch(sheet);
        while (match.hasNext()) {
            const QString name = match.next().captured(1);
            if (!QFile::exists(name))
                missing << name;
        }
        QCOMPARE(missing, QStringList({":/images/Grey.png"_s, ":/images/Yellow.png"_s}));
    }

    void fonts_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<int>("pixels");
        QTest::addColumn<QColor>("colour");
        const QColor black(Qt::black);
        const QColor white(Qt::white);
        QTest::newRow("QPushButton") << plain<QPushButton>() << 20 << black;
        QTest::newRow("QGroupBox") << plain<QGroupBox>() << 16 << black;
        QTest::newRow("QRadioButton") << plain<QRadioButton>() << 14 << black;
        QTest::newRow("QComboBox") << plain<QComboBox>() << 16 << black;
        QTest::newRow("QLCDNumber") << plain<QLCDNumber>() << 14 << white;
        QTest::newRow("QLabel") << plain<QLabel>() << 16 << white;
        QTest::newRow("QSpinBox") << plain<QSpinBox>() << 14 << black;
        QTest::newRow("QCheckBox") << plain<QCheckBox>() << 14 << black;
        QTest::newRow("QProgressBar") << plain<QProgressBar>() << 14 << black;
        QTest::newRow("QListView") << plain<QListWidget>() << 24 << white;
        QTest::newRow("QTabWidget") << plain<QTabWidget>() << 14 << black;
        QTest::newRow("QTabBar") << plain<QTabBar>() << 14 << black;
        QTest::newRow("QPlainTextEdit") << plain<QPlainTextEdit>() << 12 << black;
        const auto title = [] {
            auto *label = new QLabel;
            label->setObjectName("tabTitle"_s);
            return label;
        };
        QTest::newRow("title strip") << Make(title) << 20 << black;
    }

    void fonts()
    {
        Stage stage;
        QFETCH(Make, make);
        QFETCH(int, pixels);
        QFETCH(QColor, colour);
        const QWidget *widget = stage.place(make());
        QCOMPARE(widget->font().family(), "Arial"_s);
        QCOMPARE(widget->font().pixelSize(), pixels);
        QVERIFY(widget->font().bold());
        QCOMPARE(widget->palette().color(widget->foregroundRole()), colour);
    }

    void grounds_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<double>("x"); // where nothing stands before the ground
        QTest::addColumn<QColor>("top");
        QTest::addColumn<QColor>("bottom");
        const auto button = [](bool on, bool down) {
            return Make([=] {
                auto *widget = new QPushButton;
                widget->setCheckable(true);
                widget->setChecked(on);
                widget->setDown(down);
                return widget;
            });
        };
        QTest::newRow("button off") << button(false, false) << 0.5 << greyTop << greyBottom;
        QTest::newRow("button on") << button(true, false) << 0.5 << amberTop << amberBottom;
        QTest::newRow("button pressed") << button(false, true) << 0.5 << amberTop << amberBottom;
        QTest::newRow("button on and pressed")
            << button(true, true) << 0.5 << amberTop << amberBottom;
        QTest::newRow("QComboBox") << plain<QComboBox>() << 0.5 << greyTop << greyBottom;
        QTest::newRow("QCheckBox") << plain<QCheckBox>() << 0.5 << greyTop << greyBottom;
        QTest::newRow("QSlider") << Make([] { return new QSlider(Qt::Horizontal); }) << 0.5
                                 << greyTop << greyBottom;
        QTest::newRow("QLCDNumber") << plain<QLCDNumber>() << 0.2 << greyTop << greyBottom;
        QTest::newRow("QSpinBox") << plain<QSpinBox>() << 0.5 << greyTop << greyBottom;
        QTest::newRow("QProgressBar") << plain<QProgressBar>() << 0.2 << greyTop << greyBottom;
        QTest::newRow("QListView") << plain<QListWidget>() << 0.5 << greyTop << greyBottom;
        QTest::newRow("QLineEdit")
            << plain<QLineEdit>() << 0.5 << QColor(221, 221, 221) << QColor(187, 187, 187);
        const auto named = [](const char *name) {
            return Make([name] {
                auto *label = new QLabel;
                label->setObjectName(QLatin1String(name));
                return label;
            });
        };
        QTest::newRow("icon") << named("icon") << 0.5 << amberTop << amberBottom;
        QTest::newRow("title strip") << named("tabTitle") << 0.5 << amberTop << amberBottom;
    }

    void grounds()
    {
        Stage stage;
        QFETCH(Make, make);
        QFETCH(double, x);
        QFETCH(QColor, top);
        QFETCH(QColor, bottom);
        QWidget *widget = stage.place(make());
        const QImage image = widget->grab().toImage();
        const int column = int(image.width() * x);
        verifyNear(image.pixelColor(column, 4), top);
        verifyNear(image.pixelColor(column, image.height() - 5), bottom);
    }

    void groupBox()
    {
        Stage stage;
        auto *box = stage.place(new QGroupBox("Title"_s), QRect(50, 50, 200, 150));
        const QImage image =
            stage.window.grab(QRect(box->mapTo(&stage.window, QPoint()), box->size())).toImage();
        verifyNear(image.pixelColor(20, 18), greyTop);
        verifyNear(image.pixelColor(100, 145), greyBottom);
        // The title's box lies across the upper edge, in the middle.
        verifyNear(image.pixelColor(100 - 22, 8), amberTop);
        verifyNear(image.pixelColor(20, 2), pageTop);
    }

    /** Display and slider are one piece: their outer corners are round, those between them aren't.
     */
    void corners_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<bool>("leftRound");
        QTest::addColumn<bool>("rightRound");
        QTest::newRow("QSlider") << Make([] { return new QSlider(Qt::Horizontal); }) << false
                                 << true;
        QTest::newRow("QLCDNumber") << plain<QLCDNumber>() << true << false;
        QTest::newRow("QPushButton") << plain<QPushButton>() << true << true;
        QTest::newRow("QComboBox") << plain<QComboBox>() << true << true;
        QTest::newRow("QSpinBox") << plain<QSpinBox>() << true << true;
        QTest::newRow("QCheckBox") << plain<QCheckBox>() << true << true;
        QTest::newRow("QListView") << plain<QListWidget>() << true << true;
        QTest::newRow("QPlainTextEdit") << plain<QPlainTextEdit>() << true << true;
    }

    void corners()
    {
        Stage stage;
        QFETCH(Make, make);
        QFETCH(bool, leftRound);
        QFETCH(bool, rightRound);
        QWidget *widget = stage.place(make());
        const QImage image =
            stage.window.grab(QRect(widget->mapTo(&stage.window, QPoint()), widget->size()))
                .toImage();
        const auto isBlack = [&image](int x, int y) {
            return near(image.pixelColor(x, y), QColor(Qt::black), 50);
        };
        const int right = image.width() - 1;
        const int bottom = image.height() - 1;
        QCOMPARE(isBlack(1, 1), !leftRound);
        QCOMPARE(isBlack(1, bottom - 1), !leftRound);
        QCOMPARE(isBlack(right - 1, 1), !rightRound);
        QCOMPARE(isBlack(right - 1, bottom - 1), !rightRound);
        QVERIFY(isBlack(right / 2, 0));
        QVERIFY(isBlack(right / 2, 1));
        QVERIFY(!isBlack(right / 2, 2));
        QVERIFY(isBlack(0, bottom / 2));
    }

    void sizes()
    {
        Stage stage;
        auto *check = stage.place(new QCheckBox("Check"_s));
        QStyleOptionButton option;
        option.initFrom(check);
        QCOMPARE(
            check->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, check).size(),
            QSize(25, 25));
        QCOMPARE(check->style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, &option, check), 5);

        auto *combo = stage.place(new QComboBox);
        QStyleOptionComboBox comboOption;
        comboOption.initFrom(combo);
        QCOMPARE(
            combo->style()
                ->subControlRect(QStyle::CC_ComboBox, &comboOption, QStyle::SC_ComboBoxArrow, combo)
                .width(),
            32); // and the edge at its left

        auto *spin = stage.place(new QSpinBox);
        QStyleOptionSpinBox spinOption;
        spinOption.initFrom(spin);
        for (const auto button : {QStyle::SC_SpinBoxUp, QStyle::SC_SpinBoxDown})
            QCOMPARE(spin->style()
                         ->subControlRect(QStyle::CC_SpinBox, &spinOption, button, spin)
                         .width(),
                32); // likewise

        auto *slider = stage.place(new QSlider(Qt::Horizontal));
        QStyleOptionSlider sliderOption;
        sliderOption.initFrom(slider);
        sliderOption.orientation = Qt::Horizontal;
        sliderOption.state |= QStyle::State_Horizontal;
        sliderOption.maximum = 100;
        const QRect handle = slider->style()->subControlRect(
            QStyle::CC_Slider, &sliderOption, QStyle::SC_SliderHandle, slider);
        QVERIFY2(handle.width() >= 30 && handle.width() <= 34,
            qPrintable(QString::number(handle.width())));

        auto *text = stage.place(new QPlainTextEdit);
        QCOMPARE(text->verticalScrollBar()->sizeHint().width(), 25);

        auto *tabs = stage.place(new QTabWidget, QRect(50, 50, 400, 100));
        tabs->addTab(new QWidget, "GPS"_s);
        const QSize tab = tabs->tabBar()->tabRect(0).size();
        QVERIFY2(
            tab.width() >= 110 && tab.width() <= 120, qPrintable(QString::number(tab.width())));
        QVERIFY2(
            tab.height() >= 35 && tab.height() <= 43, qPrintable(QString::number(tab.height())));
    }

    void sliderColours()
    {
        Stage stage;
        auto *slider = stage.place(new QSlider(Qt::Horizontal), QRect(50, 100, 300, 60));
        slider->setRange(0, 100);
        slider->setValue(50);
        const QImage image = slider->grab().toImage();
        const int middle = image.height() / 2;
        QCOMPARE(image.pixelColor(40, middle), QColor(255, 194, 66));
        QCOMPARE(image.pixelColor(260, middle), QColor(50, 50, 50));
        verifyNear(image.pixelColor(150, 12), amberTop);
    }

    /** Between the page's edge and the handle the groove is a bar of 5 pixels. */
    void sliderGroove()
    {
        Stage stage;
        auto *slider = stage.place(new QSlider(Qt::Horizontal), QRect(50, 100, 300, 60));
        slider->setRange(0, 100);
        slider->setValue(50);
        const QImage image = slider->grab().toImage();
        int filled = 0;
        int rest = 0;
        for (int y = 0; y < image.height(); ++y) {
            filled += image.pixelColor(40, y) == QColor(255, 194, 66);
            rest += image.pixelColor(260, y) == QColor(50, 50, 50);
        }
        QCOMPARE(filled, 5);
        QCOMPARE(rest, 5);
    }

    void spinArrows_data()
    {
        QTest::addColumn<QStyle::SubControl>("button");
        QTest::newRow("up") << QStyle::SC_SpinBoxUp;
        QTest::newRow("down") << QStyle::SC_SpinBoxDown;
    }

    /** A pressed arrow gives way by a pixel to the right and down. */
    void spinArrows()
    {
        QFETCH(QStyle::SubControl, button);
        Stage stage;
        auto *spin = stage.place(new QSpinBox, QRect(50, 100, 120, 80));
        spin->setRange(0, 100);
        spin->setValue(50);
        QStyleOptionSpinBox option;
        option.initFrom(spin);
        const QRect place =
            spin->style()->subControlRect(QStyle::CC_SpinBox, &option, button, spin);
        // Without the button's edges.
        const auto arrow = [&] {
            return darkPart(spin->grab(place.adjusted(4, 4, -4, -4)).toImage());
        };
        const QRect before = arrow();
        QVERIFY(!before.isEmpty());
        QTest::mousePress(spin, Qt::LeftButton, {}, place.center());
        const QRect pressed = arrow();
        QTest::mouseRelease(spin, Qt::LeftButton, {}, place.center());
        QCOMPARE(pressed, before.translated(1, 1));
        QCOMPARE(arrow(), before);
    }

    void tabPane()
    {
        Stage stage;
        auto *tabs = stage.place(new QTabWidget, QRect(50, 50, 400, 150));
        tabs->addTab(new QWidget, "GPS"_s);
        const QImage image = tabs->grab().toImage();
        const int top = tabs->tabBar()->geometry().bottom() + 1;
        const auto band = [&](int y) { return image.pixelColor(300, top + y).red(); };
        QVERIFY2(band(2) > 150 && band(0) < 110 && band(4) < 110,
            qPrintable("%1 %2 %3"_s.arg(band(0)).arg(band(2)).arg(band(4))));
    }

    void progressBar()
    {
        Stage stage;
        auto *bar = stage.place(new QProgressBar, QRect(50, 100, 300, 40));
        bar->setValue(50);
        const QRect caption = darkPart(bar->grab(bar->rect().adjusted(4, 4, -4, -4)).toImage());
        QVERIFY2(qAbs(caption.center().x() - 146) <= 2 && qAbs(caption.center().y() - 16) <= 2,
            qPrintable("%1, %2"_s.arg(caption.center().x()).arg(caption.center().y())));
        bar->setTextVisible(false);
        const QImage image = bar->grab().toImage();
        verifyNear(image.pixelColor(60, 8), amberTop);
        verifyNear(image.pixelColor(60, 34), amberBottom, 40);
        verifyNear(image.pixelColor(240, 4), greyTop);
    }

    /** Its indicator is a picture that isn't there. */
    void radioButton()
    {
        Stage stage;
        auto *radio = stage.place(new QRadioButton, QRect(50, 100, 60, 40));
        QImage without = stage.page->grab(radio->geometry()).toImage();
        radio->setChecked(true);
        QCOMPARE(stage.page->grab(radio->geometry()).toImage(), without);
        radio->hide();
        QCOMPARE(stage.page->grab(radio->geometry()).toImage(), without);
    }

    void listHover()
    {
        Stage stage;
        auto *list = stage.place(new QListWidget, QRect(50, 50, 200, 200));
        list->addItems({QString(), QString(), QString()});
        const QRect item = list->visualItemRect(list->item(1));
        QTest::mouseMove(list->viewport(), item.center());
        QTRY_VERIFY(near(list->viewport()->grab().toImage().pixelColor(item.center()),
            QColor(0xEB, 0xED, 0xF8), 8));
    }

    void tabs()
    {
        Stage stage;
        auto *bar = stage.place(new QTabBar, QRect(50, 50, 400, 50));
        bar->addTab(QString());
        bar->addTab(QString());
        const QImage image = bar->grab().toImage();
        verifyNear(image.pixelColor(bar->tabRect(0).center().x(), 5), amberTop);
        verifyNear(image.pixelColor(bar->tabRect(1).center().x(), 5), greyTop);
    }

    void listColours()
    {
        Stage stage;
        auto *list = stage.place(new QListWidget, QRect(50, 50, 200, 200));
        list->setAlternatingRowColors(true);
        list->addItems({QString(), QString(), QString()});
        list->item(0)->setSelected(true);
        const QImage image = list->viewport()->grab().toImage();
        const auto colour = [&](int row, int y) {
            const QRect item = list->visualItemRect(list->item(row));
            return image.pixelColor(item.center().x(), item.top() + y);
        };
        QCOMPARE(colour(0, 0), QColor(0x6a, 0x6e, 0xa9));
        verifyNear(colour(0, 4), amberTop);
        QCOMPARE(colour(1, 4), QColor(0, 128, 0));
    }

    void comboList()
    {
        Stage stage;
        auto *combo = stage.place(new QComboBox);
        for (int i = 0; i < 30; ++i)
            combo->addItem(QString::number(i));
        combo->showPopup();
        auto *list = combo->view();
        QCOMPARE(list->font().pixelSize(), 16);
        QCOMPARE(list->palette().color(QPalette::Text), QColor(Qt::white));
        QCOMPARE(list->verticalScrollBar()->width(), 25);
        const QImage image = list->viewport()->grab().toImage();
        const QRect current = list->visualRect(combo->model()->index(0, 0));
        verifyNear(image.pixelColor(current.center()), QColor(0xd3, 0xd3, 0xd3), 1);
        const QRect other = list->visualRect(combo->model()->index(1, 0));
        QCOMPARE(image.pixelColor(other.center()), QColor(128, 128, 128));
        // 15 pixels above and below the text.
        QVERIFY(other.height() >= list->fontMetrics().height() + 30);
        combo->hidePopup();
        takeWarnings(); // the offscreen platform grabs no keyboard for the list
    }

    void frame()
    {
        Stage stage;
        stage.window.showTab(0);
        const QImage image = stage.window.grab().toImage();
        verifyNear(image.pixelColor(150, 6), amberTop);
        verifyNear(image.pixelColor(150, 46), amberBottom);
        QCOMPARE(image.pixelColor(150, 0), QColor(Qt::black));
        // The page area's edge shows at both sides and below, but not above, beside a page too.
        verifyNear(image.pixelColor(1, 60), amberTop);
        verifyNear(image.pixelColor(598, 60), amberTop);
        verifyNear(image.pixelColor(1, 355), amberBottom, 30);
        verifyNear(image.pixelColor(300, 51), pageTop);
        verifyNear(image.pixelColor(20, 60), pageTop);
        verifyNear(image.pixelColor(20, 365), pageBottom);
        QCOMPARE(image.pixelColor(320, 432), QColor(25, 23, 28));
        verifyNear(image.pixelColor(360, 392), greyTop);
    }

    void dialogGround()
    {
        Stage stage;
        QDialog dialog(stage.page);
        dialog.resize(200, 200);
        const QImage image = dialog.grab().toImage();
        verifyNear(image.pixelColor(100, 2), pageTop);
        verifyNear(image.pixelColor(100, 197), pageBottom);
    }

    /** A tool-tip inherits the labels' white, which its own ground wouldn't let one read. */
    void toolTip()
    {
        Stage stage;
        auto *button = stage.place(new QPushButton);
        QToolTip::showText(QPoint(10, 10), "Heater is not available"_s, button);
        QWidget *tip = nullptr;
        for (QWidget *candidate : QApplication::topLevelWidgets()) {
            if (candidate->inherits("QTipLabel"))
                tip = candidate;
        }
        QVERIFY(tip);
        const QImage image = tip->grab().toImage();
        verifyNear(image.pixelColor(3, 3), amberTop);
        QCOMPARE(tip->palette().color(QPalette::ToolTipText), QColor(Qt::black));
        delete tip;
        takeWarnings();
    }

    /** A dark desktop changes nothing: palette, style and font are the program's own. */
    void ownLook()
    {
        Stage stage;
        QPalette dark(QColor(30, 30, 30));
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::Text, Qt::white);
        stage.window.showTab(0);
        const QImage before = stage.window.grab().toImage();
        QApplication::setPalette(dark);
        QApplication::setStyle("Windows"_s);
        QApplication::setFont(QFont("Courier"_s, 20));
        setApplicationLook();
        VornSettings again;
        again.show();
        QCOMPARE(again.grab().toImage(), before);
        QCOMPARE(QApplication::palette().color(QPalette::Base), QColor(Qt::white));
        QCOMPARE(QApplication::palette().color(QPalette::Text), QColor(Qt::black));
        QCOMPARE(QApplication::font().family(), "Arial"_s);
    }
};

VORN_TEST_MAIN(StyleSheetTest)
#include "tst_stylesheet.moc"
