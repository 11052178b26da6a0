#include "frame/window/tabMenuDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/pages.h"

#include <QAccessible>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using namespace support;

namespace {

constexpr int columnX[] = {36, 148, 260, 372, 484};
constexpr int labelY[] = {85, 190, 290};

QImage picture(const QIcon &icon)
{
    return icon.pixmap(QSize(60, 60)).toImage();
}

QRect placeOn(const QWidget &page, const QWidget *widget)
{
    return {widget->mapTo(&page, QPoint()), widget->size()};
}

} // namespace

class MenuPageTest : public DeviceTest
{
    Q_OBJECT

private:
    static void addEntries()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < pageCount; ++row) {
            if (pageRows[row].button)
                QTest::newRow(pageRows[row].caption) << row;
        }
    }

private slots:
    void form()
    {
        tabMenuDlg page;
        QCOMPARE(page.objectName(), "tabMenu"_s);
        QCOMPARE(page.windowTitle(), "Menu"_s);
        QCOMPARE(page.size(), QSize(600, 320));
        QCOMPARE(page.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(page.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(page.findChildren<QPushButton *>().size(), 15);
        QCOMPARE(page.findChildren<QLabel *>().size(), 15);
        QCOMPARE(calls(), QStringList());
    }

    void grids_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QRect>("place");
        QTest::newRow("first") << "layoutWidget1"_s
                               << "gridLayout"_s << QRect(20, 13, 551, 68);
        QTest::newRow("second") << "layoutWidget2"_s
                                << "gridLayout_2"_s << QRect(20, 120, 551, 68);
    }

    void grids()
    {
        QFETCH(QString, container);
        QFETCH(QString, layout);
        QFETCH(QRect, place);
        tabMenuDlg page;
        const auto *widget = page.findChild<QWidget *>(container);
        QVERIFY(widget);
        QCOMPARE(widget->geometry(), place);
        const auto *grid = widget->findChild<QGridLayout *>(layout);
        QVERIFY(grid);
        QCOMPARE(widget->layout(), grid);
        QCOMPARE(grid->rowCount(), 1);
        QCOMPARE(grid->columnCount(), 5);
    }

    void slotsInOrder()
    {
        const auto &meta = tabMenuDlg::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << QString::fromLatin1(meta.method(i).methodSignature());
        const QStringList expected{"tabSelectionChanged(int)"_s, "buttonVersionClicked()"_s,
            "buttonTempClicked()"_s, "buttonDisplayClicked()"_s, "buttonPowerClicked()"_s,
            "buttonSysConfigClicked()"_s, "buttonAboutClicked()"_s, "buttonLedClicked()"_s,
            "buttonBuzzerClicked()"_s, "buttonCanClicked()"_s, "buttonAdvancedClicked()"_s,
            "buttonDigIOClicked()"_s, "buttonLightSensorClicked()"_s, "buttonTouchClicked()"_s,
            "buttonOnOffSettingsClicked()"_s, "buttonTelematicsClicked()"_s};
        QCOMPARE(names, expected);
    }

    void entry_data() { addEntries(); }

    void entry()
    {
        QFETCH(int, row);
        const PageRow &expected = pageRows[row];
        tabMenuDlg page;
        page.show();
        const auto *button = child<QPushButton>(&page, expected.button);
        QCOMPARE(button->text(), QString());
        QCOMPARE(button->iconSize(), QSize(60, 60));
        QCOMPARE(picture(button->icon()),
            picture(QIcon(":/VornSettings/Resources/"_s + latin1(expected.picture))));
        QVERIFY(!picture(button->icon()).isNull());
        QCOMPARE(button->toolTip(), QString());
        const QRect place = placeOn(page, button);
        QCOMPARE(place.size(), QSize(66, 66));
        QCOMPARE(place.x(), columnX[expected.place % 5]);
        if (expected.place >= 10)
            QCOMPARE(place.y(), 220);

        const auto *label = child<QLabel>(&page, expected.label);
        QCOMPARE(label->text(), latin1(expected.caption));
        QCOMPARE(label->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
        QCOMPARE(label->y(), labelY[expected.place / 5]);
        QCOMPARE(label->geometry().center().x(), place.center().x());
        QVERIFY(label->geometry().top() > place.bottom());
    }

    void leadsToPage_data() { addEntries(); }

    void leadsToPage()
    {
        QFETCH(int, row);
        const PageRow &expected = pageRows[row];
        tabMenuDlg page;
        QSignalSpy asked(&page, &tabMenuDlg::tabSelectionChanged);
        page.show();
        auto *button = child<QPushButton>(&page, expected.button);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked.constFirst(), QVariantList{expected.index});
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(asked.size(), 2);
        QVERIFY(QMetaObject::invokeMethod(&page, expected.slot));
        QCOMPARE(asked.constLast(), QVariantList{expected.index});

        button->setEnabled(false);
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(asked.size(), 3);
        QCOMPARE(calls(), QStringList());
    }

    void everyPageOnce()
    {
        tabMenuDlg page;
        QSignalSpy asked(&page, &tabMenuDlg::tabSelectionChanged);
        page.show();
        for (auto *button : page.findChildren<QPushButton *>())
            QTest::mouseClick(button, Qt::LeftButton);
        QList<int> indices;
        for (const auto &arguments : asked)
            indices << arguments.constFirst().toInt();
        std::sort(indices.begin(), indices.end());
        QCOMPARE(indices, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    }

    /** A screen reader says the caption for the picture above it. */
    void accessibleNames_data() { addEntries(); }

    void accessibleNames()
    {
        QFETCH(int, row);
        tabMenuDlg page;
        auto *button = child<QPushButton>(&page, pageRows[row].button);
        auto *accessible = QAccessible::queryAccessibleInterface(button);
        QVERIFY(accessible);
        QCOMPARE(accessible->text(QAccessible::Name), latin1(pageRows[row].caption));
        QCOMPARE(child<QLabel>(&page, pageRows[row].label)->buddy(), button);
    }

    /** The page's own sheet, also over the grey of the frame's. */
    void buttonLook_data()
    {
        QTest::addColumn<QString>("outerSheet");
        QTest::newRow("alone") << QString();
        QTest::newRow("in the frame")
            << "QPushButton:!on { background: blue; border: 1px solid red; font: 9px; }"_s;
    }

    void buttonLook()
    {
        QFETCH(QString, outerSheet);
        QWidget frame;
        frame.setStyleSheet(outerSheet);
        auto *page = new tabMenuDlg;
        page->setParent(&frame);
        frame.show();
        auto *button = page->ui->pushButtonVersion;
        button->setIcon(QIcon());
        button->ensurePolished();
        QCOMPARE(button->font().pixelSize(), 20);
        QVERIFY(button->font().bold());
        QCOMPARE(button->font().family(), "Arial"_s);
        const QImage image = button->grab().toImage();
        const int middle = image.width() / 2;
        QCOMPARE(image.pixelColor(middle, 1), QColor(128, 128, 128));
        QCOMPARE(image.pixelColor(middle, 12), QColor(255, 212, 73));
        const QColor bottom = image.pixelColor(middle, image.height() - 4);
        QVERIFY2(bottom.red() == 255 && qAbs(bottom.green() - 141) < 8 && bottom.blue() < 12,
            qPrintable(bottom.name()));
    }
};

VORN_TEST_MAIN(MenuPageTest)
#include "tst_menupage.moc"
