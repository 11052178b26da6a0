#include "pages/tabDigIODlg.h"
#include "tests/support/PageTest.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>

using namespace support;

class DigitalIoPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void spacing()
    {
        const tabDigIODlg page;
        for (const auto &name : {"gridLayout"_s, "gridLayout_2"_s}) {
            const auto *grid = page.findChild<QGridLayout *>(name);
            QCOMPARE(grid->horizontalSpacing(), 15);
            QCOMPARE(grid->verticalSpacing(), 10);
        }
    }

    void outputsFollowTheDeviceAtConstruction_data()
    {
        QTest::addColumn<int>("mask");
        for (const int mask : {0, 1, 2, 4, 8, 10, 15, 0xF5})
            QTest::addRow("%d", mask) << mask;
    }

    void outputsFollowTheDeviceAtConstruction()
    {
        QFETCH(int, mask);
        setUnit("DigIO.digIO"_s, QString::number(mask));
        {
            const tabDigIODlg page;
            QCOMPARE(shownMask(page, "checkBoxDO_"), mask & 15);
            QCOMPARE(shownMask(page, "checkBoxDI_"), 0);
            for (const char *output :
                {"checkBoxDO_1", "checkBoxDO_2", "checkBoxDO_3", "checkBoxDO_4"})
                QVERIFY(child<QCheckBox>(&page, output)->isEnabled());
            QCOMPARE(
                calls(), QStringList({"DigIO_create()"_s, "DigIO_getDigIO() = 0 [%1]"_s.arg(mask),
                             "DigIO_setDigIO(%1) = 0"_s.arg(mask)}));
        }
        QCOMPARE(calls(), QStringList("DigIO_release()"_s));
    }

    void noOutputs_data() { addFailureRows({"DigIO_getDigIO"_s, "DigIO_setDigIO"_s}); }

    void noOutputs()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code, 1);
        tabDigIODlg page;
        QStringList expected{"DigIO_create()"_s};
        if (operation == "DigIO_setDigIO"_s)
            expected << "DigIO_getDigIO() = 0 [5]"_s
                     << "DigIO_setDigIO(5) = %1"_s.arg(code);
        else
            expected << "DigIO_getDigIO() = %1"_s.arg(code);
        QCOMPARE(calls(), expected);
        page.show();
        QVERIFY(child<QGroupBox>(&page, "groupBoxStatus_2")->isHidden());
        QVERIFY(!child<QGroupBox>(&page, "groupBoxStatus_2")->isEnabled());
        QVERIFY(child<QGroupBox>(&page, "groupBoxStatus")->isVisible());
        QCOMPARE(calls(), QStringList("DigIO_getDigIO() = 0 [5]"_s));
    }

    void inputsAreReadAtOnceAndByTimer()
    {
        tabDigIODlg page;
        calls();
        page.show();
        QCOMPARE(calls(), QStringList("DigIO_getDigIO() = 0 [5]"_s));
        QCOMPARE(shownMask(page, "checkBoxDI_"), 5);
        setUnit("DigIO.digIO"_s, "10"_s);
        QTRY_COMPARE(shownMask(page, "checkBoxDI_"), 10);
        // The outputs stand for what was last set here.
        QCOMPARE(shownMask(page, "checkBoxDO_"), 5);
    }

    void everyBitHasItsBox_data()
    {
        QTest::addColumn<int>("mask");
        for (int mask = 1; mask < 16; ++mask)
            QTest::addRow("%d", mask) << mask;
    }

    void everyBitHasItsBox()
    {
        QFETCH(int, mask);
        setUnit("DigIO.digIO"_s, QString::number(mask));
        tabDigIODlg page;
        page.show();
        QCOMPARE(shownMask(page, "checkBoxDI_"), mask);
    }

    void unchangedMaskIsNotShownAgain()
    {
        setUnit("DigIO.digIO"_s, "0"_s);
        tabDigIODlg page;
        auto *box = child<QCheckBox>(&page, "checkBoxDI_1");
        box->setChecked(true);
        page.show();
        // A first mask of 0 counts as unchanged.
        QVERIFY(box->isChecked());
        page.hide();
        setUnit("DigIO.digIO"_s, "16"_s);
        page.show();
        QVERIFY2(!box->isChecked(), "the upper bits count for the comparison");
        box->setChecked(true);
        page.hide();
        page.show();
        QVERIFY(box->isChecked());
    }

    void timerRunsWhileShown()
    {
        tabDigIODlg page;
        HeldTimer timer(&page);
        QVERIFY(!timer.isActive());
        page.show();
        QVERIFY(timer.isActive());
        QCOMPARE(timer.interval(), 250);
        calls();
        QVERIFY(timer.fire());
        QVERIFY(timer.fire());
        const auto read = "DigIO_getDigIO() = 0 [5]"_s;
        QCOMPARE(calls(), QStringList({read, read}));
        page.hide();
        QVERIFY(!timer.isActive());
    }

    void failingFirstRead_data() { addFailureRows({"DigIO_getDigIO"_s}); }

    void failingFirstRead()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabDigIODlg page;
        const HeldTimer timer(&page);
        fault(operation, code, 1);
        page.show();
        QCOMPARE(
            boxes(&page), code == 2 ? QStringList() : QStringList(errorBox(code, "getDigIO"_s)));
        QCOMPARE(timer.isActive(), code == 2);
        QCOMPARE(child<QGroupBox>(&page, "groupBoxStatus")->isVisible(), code != 2);
        page.hide();
        page.show();
        QVERIFY(timer.isActive());
        // Nothing brings the inputs back.
        QCOMPARE(child<QGroupBox>(&page, "groupBoxStatus")->isVisible(), code != 2);
    }

    void failingRound_data() { failingFirstRead_data(); }

    void failingRound()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabDigIODlg page;
        HeldTimer timer(&page);
        page.show();
        fault(operation, code);
        calls();
        QVERIFY(timer.fire());
        const QStringList asked("DigIO_getDigIO() = %1"_s.arg(code));
        QCOMPARE(calls(), asked);
        QCOMPARE(timer.isActive(), code == 2);
        if (code == 2) {
            // Asked again and again, without a word.
            QVERIFY(timer.fire());
            QCOMPARE(calls(), asked);
            return;
        }
        QCOMPARE(boxes(&page), QStringList(errorBox(code, "getDigIO"_s)));
        // The next showing tells it anew.
        page.hide();
        page.show();
        QCOMPARE(calls(), asked);
        QCOMPARE(timer.isActive(), false);
        QCOMPARE(boxes(&page), QStringList(errorBox(code, "getDigIO"_s)));
    }

    void hiddenInputsStayHidden()
    {
        tabDigIODlg page;
        HeldTimer timer(&page);
        fault("DigIO_getDigIO"_s, 2, 1);
        page.show();
        setUnit("DigIO.digIO"_s, "3"_s);
        QVERIFY(timer.fire());
        QVERIFY(child<QGroupBox>(&page, "groupBoxStatus")->isHidden());
        QCOMPARE(shownMask(page, "checkBoxDI_"), 3);
    }

    void inputsCantBePressed()
    {
        tabDigIODlg page;
        page.show();
        calls();
        click(&page, "checkBoxDI_2");
        QCOMPARE(shownMask(page, "checkBoxDI_"), 5);
        QCOMPARE(calls(), QStringList());
    }

    void clickWritesAllBoxes()
    {
        tabDigIODlg page;
        page.show();
        calls();
        const std::pair<const char *, int> presses[] = {
            {"checkBoxDO_2", 7}, {"checkBoxDO_1", 6}, {"checkBoxDO_4", 14}, {"checkBoxDO_3", 10}};
        for (const auto &[box, mask] : presses) {
            click(&page, box);
            QCOMPARE(calls(), QStringList("DigIO_setDigIO(%1) = 0"_s.arg(mask)));
            QCOMPARE(unit("DigIO.digIO"_s), QString::number(mask));
        }
        QTest::keyClick(child<QCheckBox>(&page, "checkBoxDO_1"), Qt::Key_Space);
        QCOMPARE(calls(), QStringList("DigIO_setDigIO(11) = 0"_s));
    }

    /** The boxes are all that is written; what else the unit told is not. */
    void clickWritesOnlyWhatBoxesShow()
    {
        setUnit("DigIO.digIO"_s, "245"_s); // 0xF5
        tabDigIODlg page;
        page.show();
        calls();
        click(&page, "checkBoxDO_2");
        QCOMPARE(calls(), QStringList("DigIO_setDigIO(7) = 5"_s)); // nothing drives the upper lines
        QCOMPARE(boxes(&page), QStringList(errorBox(5, "DigIO_setDigIO"_s)));
    }

    void failingWrite_data() { addFailureRows({"DigIO_setDigIO"_s}); }

    void failingWrite()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabDigIODlg page;
        page.show();
        fault(operation, code);
        calls();
        click(&page, "checkBoxDO_2");
        QCOMPARE(calls(), QStringList("DigIO_setDigIO(7) = %1"_s.arg(code)));
        QCOMPARE(child<QGroupBox>(&page, "groupBoxStatus_2")->isVisible(), code != 2);
        QCOMPARE(child<QGroupBox>(&page, "groupBoxStatus_2")->isEnabled(), code != 2);
        QVERIFY2(child<QCheckBox>(&page, "checkBoxDO_2")->isChecked(),
            "the boxes stay as the user left them");
        QCOMPARE(boxes(&page),
            code == 2 ? QStringList() : QStringList(errorBox(code, "DigIO_setDigIO"_s)));
    }

private:
    static int shownMask(const QWidget &page, const char *prefix)
    {
        int mask = 0;
        for (int line = 1; line <= 4; ++line) {
            const QByteArray name = QByteArray(prefix) + QByteArray::number(line);
            if (child<QCheckBox>(&page, name.constData())->isChecked())
                mask += 1 << (line - 1);
        }
        return mask;
    }
};

VORN_TEST_MAIN(DigitalIoPageTest)
#include "tst_digitaliopage.moc"
