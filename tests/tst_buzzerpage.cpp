#include "pages/tabBuzzerDlg.h"
#include "tests/support/PageTest.h"

#include <QLabel>
#include <QPushButton>
#include <QSlider>

using namespace support;

namespace {

const QStringList firstLoads = {
    "Buzzer_getFrequency() = 0 [2400]"_s,
    "Buzzer_setFrequency(2400) = 0"_s,
    "Buzzer_getVolume() = 0 [20]"_s,
    "Buzzer_setVolume(20) = 0"_s,
    "Buzzer_getTrigger() = 0 [false]"_s,
};

} // namespace

/** The Buzzer page on a silent buzzer of 2400 Hz and volume 20. */
class BuzzerPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        setUnit("Buzzer.frequency"_s, "2400"_s);
        setUnit("Buzzer.volume"_s, "20"_s);
        setUnit("Buzzer.trigger"_s, "false"_s);
    }

    /** What moves a slider goes back to the device; what is there already doesn't. */
    void loadsOnShow()
    {
        tabBuzzerDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), firstLoads);
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), 2400);
        QCOMPARE(text(page, "labelFreq"), "Freq\n 2400 Hz"_s);
        QCOMPARE(child<QSlider>(&page, "sliderVol")->value(), 20);
        QCOMPARE(text(page, "labelVolume"), "Volume\n 20"_s);
        QVERIFY(!child<QPushButton>(&page, "buttonOn")->isChecked());
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->text(), "Off"_s);

        page.hide();
        QCOMPARE(calls(), QStringList());
        page.show();
        QCOMPARE(
            calls(), (QStringList{"Buzzer_getFrequency() = 0 [2400]"_s,
                         "Buzzer_getVolume() = 0 [20]"_s, "Buzzer_getTrigger() = 0 [false]"_s}));
    }

    void loadsSoundingBuzzer()
    {
        setUnit("Buzzer.trigger"_s, "true"_s);
        tabBuzzerDlg page;
        calls();
        page.show();
        QCOMPARE(calls().mid(4),
            (QStringList{"Buzzer_getTrigger() = 0 [true]"_s, "Buzzer_setTrigger(true) = 0"_s}));
        QVERIFY(child<QPushButton>(&page, "buttonOn")->isChecked());
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->text(), "On"_s);

        page.hide();
        setUnit("Buzzer.trigger"_s, "false"_s);
        page.show();
        QCOMPARE(calls().constLast(), "Buzzer_setTrigger(false) = 0"_s);
        QVERIFY(!child<QPushButton>(&page, "buttonOn")->isChecked());
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->text(), "Off"_s);
    }

    void holdsFrequencyInRange_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<int>("shown");
        QTest::newRow("0") << "0"_s << 700;
        QTest::newRow("699") << "699"_s << 700;
        QTest::newRow("700") << "700"_s << 700;
        QTest::newRow("701") << "701"_s << 701;
        QTest::newRow("9999") << "9999"_s << 9999;
        QTest::newRow("10000") << "10000"_s << 10000;
        QTest::newRow("10001") << "10001"_s << 10000;
        QTest::newRow("65535") << "65535"_s << 10000;
    }

    void holdsFrequencyInRange()
    {
        QFETCH(QString, device);
        QFETCH(int, shown);
        setUnit("Buzzer.frequency"_s, device);
        tabBuzzerDlg page;
        calls();
        page.show();
        QStringList expected{"Buzzer_getFrequency() = 0 [%1]"_s.arg(device)};
        if (shown != 700) // where the slider stands at first
            expected << "Buzzer_setFrequency(%1) = 0"_s.arg(shown);
        expected << "Buzzer_getVolume() = 0 [20]"_s
                 << "Buzzer_setVolume(20) = 0"_s
                 << "Buzzer_getTrigger() = 0 [false]"_s;
        QCOMPARE(calls(), expected);
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), shown);
        QCOMPARE(text(page, "labelFreq"), "Freq\n %1 Hz"_s.arg(shown));
    }

    void holdsVolumeInRange_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<int>("shown");
        QTest::newRow("0") << "0"_s << 0;
        QTest::newRow("1") << "1"_s << 1;
        QTest::newRow("51") << "51"_s << 51;
        QTest::newRow("52") << "52"_s << 51;
        QTest::newRow("65535") << "65535"_s << 51;
    }

    void holdsVolumeInRange()
    {
        QFETCH(QString, device);
        QFETCH(int, shown);
        setUnit("Buzzer.volume"_s, device);
        tabBuzzerDlg page;
        calls();
        page.show();
        QStringList expected{"Buzzer_getVolume() = 0 [%1]"_s.arg(device)};
        if (shown != 0) // where the slider stands at first
            expected << "Buzzer_setVolume(%1) = 0"_s.arg(shown);
        expected << "Buzzer_getTrigger() = 0 [false]"_s;
        QCOMPARE(calls().mid(2), expected);
        QCOMPARE(child<QSlider>(&page, "sliderVol")->value(), shown);
        QCOMPARE(text(page, "labelVolume"), "Volume\n %1"_s.arg(shown));
    }

    void limitGoesToTheDevice()
    {
        tabBuzzerDlg page;
        page.show();
        page.hide();
        setUnit("Buzzer.frequency"_s, "0"_s);
        setUnit("Buzzer.volume"_s, "300"_s);
        calls();
        page.show();
        QCOMPARE(calls(), (QStringList{"Buzzer_getFrequency() = 0 [0]"_s,
                              "Buzzer_setFrequency(700) = 0"_s, "Buzzer_getVolume() = 0 [300]"_s,
                              "Buzzer_setVolume(51) = 0"_s, "Buzzer_getTrigger() = 0 [false]"_s}));
        QCOMPARE(unit("Buzzer.frequency"_s), "700"_s);
        QCOMPARE(unit("Buzzer.volume"_s), "51"_s);
    }

    void loadFailure_data()
    {
        addFailureRows({"Buzzer_getFrequency"_s, "Buzzer_getVolume"_s, "Buzzer_getTrigger"_s});
    }

    /** Each of the three stands alone; a label never goes with its slider. */
    void loadFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("Buzzer.trigger"_s, "true"_s);
        tabBuzzerDlg page;
        page.show();
        page.hide();
        calls();
        fault(operation, code);
        page.show();
        QCOMPARE(
            calls(), failing({"Buzzer_getFrequency() = 0 [2400]"_s, "Buzzer_getVolume() = 0 [20]"_s,
                                 "Buzzer_getTrigger() = 0 [true]"_s},
                         operation, code));
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        const QString name = operation.mid(int(qstrlen("Buzzer_")));
        QCOMPARE(boxes(&page), absent ? QStringList() : QStringList{errorBox(code, name)});
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->isVisible(),
            !(absent && name == "getFrequency"_s));
        QCOMPARE(
            child<QSlider>(&page, "sliderVol")->isVisible(), !(absent && name == "getVolume"_s));
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->isVisible(),
            !(absent && name == "getTrigger"_s));
        QVERIFY(child<QLabel>(&page, "labelFreq")->isVisible());
        QVERIFY(child<QLabel>(&page, "labelVolume")->isVisible());
        QCOMPARE(text(page, "labelFreq"), "Freq\n 2400 Hz"_s);
        QCOMPARE(text(page, "labelVolume"), "Volume\n 20"_s);
        QVERIFY(child<QPushButton>(&page, "buttonOn")->isChecked());
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->text(), "On"_s);
    }

    void echoFailure_data() { addFailureRows({"Buzzer_setFrequency"_s, "Buzzer_setVolume"_s}); }

    void echoFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabBuzzerDlg page;
        calls();
        fault(operation, code);
        page.show();
        QCOMPARE(calls(), failing(firstLoads, operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, operation.mid(int(qstrlen("Buzzer_"))))});
        QCOMPARE(text(page, "labelFreq"), "Freq\n 2400 Hz"_s);
        QCOMPARE(text(page, "labelVolume"), "Volume\n 20"_s);
    }

    void triggerEchoFailure_data() { addFailureRows({"Buzzer_setTrigger"_s}); }

    /** The button shows what was read, whatever became of the echo. */
    void triggerEchoFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("Buzzer.trigger"_s, "true"_s);
        tabBuzzerDlg page;
        calls();
        fault(operation, code);
        page.show();
        QCOMPARE(calls().mid(4), (QStringList{"Buzzer_getTrigger() = 0 [true]"_s,
                                     "Buzzer_setTrigger(true) = %1"_s.arg(code)}));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "setTrigger"_s)});
        QVERIFY(child<QPushButton>(&page, "buttonOn")->isChecked());
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->text(), "On"_s);
    }

    void slidersSetTheDevice_data()
    {
        QTest::addColumn<QString>("slider");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("value");
        QTest::newRow("frequency, one up") << "sliderFreq"_s << Qt::Key_Right << 2410;
        QTest::newRow("frequency, a page down") << "sliderFreq"_s << Qt::Key_PageDown << 2300;
        QTest::newRow("frequency, lowest") << "sliderFreq"_s << Qt::Key_Home << 700;
        QTest::newRow("frequency, highest") << "sliderFreq"_s << Qt::Key_End << 10000;
        QTest::newRow("volume, one up") << "sliderVol"_s << Qt::Key_Right << 21;
        QTest::newRow("volume, none") << "sliderVol"_s << Qt::Key_Home << 0;
        QTest::newRow("volume, highest") << "sliderVol"_s << Qt::Key_End << 51;
    }

    void slidersSetTheDevice()
    {
        QFETCH(QString, slider);
        QFETCH(Qt::Key, key);
        QFETCH(int, value);
        tabBuzzerDlg page;
        page.show();
        calls();
        QTest::keyClick(child<QSlider>(&page, qPrintable(slider)), key);
        if (slider == "sliderFreq"_s) {
            QCOMPARE(calls(), QStringList{"Buzzer_setFrequency(%1) = 0"_s.arg(value)});
            QCOMPARE(text(page, "labelFreq"), "Freq\n %1 Hz"_s.arg(value));
        } else {
            QCOMPARE(calls(), QStringList{"Buzzer_setVolume(%1) = 0"_s.arg(value)});
            QCOMPARE(text(page, "labelVolume"), "Volume\n %1"_s.arg(value));
        }
    }

    void sliderByMouse()
    {
        tabBuzzerDlg page;
        page.show();
        calls();
        auto *slider = child<QSlider>(&page, "sliderVol");
        QTest::mouseClick(slider, Qt::LeftButton, Qt::NoModifier,
            QPoint(slider->width() - 3, slider->height() / 2));
        QCOMPARE(calls(), QStringList{"Buzzer_setVolume(30) = 0"_s});
    }

    void sliderFailure_data() { addFailureRows({"Buzzer_setFrequency"_s, "Buzzer_setVolume"_s}); }

    void sliderFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabBuzzerDlg page;
        page.show();
        fault(operation, code);
        calls();
        const bool isVolume = operation == "Buzzer_setVolume"_s;
        planBox([&] { return text(page, isVolume ? "labelVolume" : "labelFreq"); });
        QTest::keyClick(child<QSlider>(&page, "sliderFreq"), Qt::Key_Right);
        QTest::keyClick(child<QSlider>(&page, "sliderVol"), Qt::Key_Right);
        QCOMPARE(calls(), failing({"Buzzer_setFrequency(2410) = 0"_s, "Buzzer_setVolume(21) = 0"_s},
                              operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, operation.mid(int(qstrlen("Buzzer_"))))});
        QCOMPARE(behindBox(), isVolume ? "Volume\n 21"_s : "Freq\n 2410 Hz"_s);
        QCOMPARE(text(page, "labelFreq"), "Freq\n 2410 Hz"_s);
        QCOMPARE(text(page, "labelVolume"), "Volume\n 21"_s);
        QVERIFY(child<QSlider>(&page, "sliderFreq")->isVisible());
        QVERIFY(child<QSlider>(&page, "sliderVol")->isVisible());
    }

    void buttonSounds()
    {
        tabBuzzerDlg page;
        page.show();
        const auto *button = child<QPushButton>(&page, "buttonOn");
        calls();
        click(&page, "buttonOn");
        QCOMPARE(calls(), QStringList{"Buzzer_setTrigger(true) = 0"_s});
        QVERIFY(button->isChecked());
        QCOMPARE(button->text(), "On"_s);
        QCOMPARE(unit("Buzzer.trigger"_s), "true"_s);
        click(&page, "buttonOn");
        QCOMPARE(calls(), QStringList{"Buzzer_setTrigger(false) = 0"_s});
        QVERIFY(!button->isChecked());
        QCOMPARE(button->text(), "Off"_s);
        QCOMPARE(unit("Buzzer.trigger"_s), "false"_s);
    }

    void buttonFailure_data() { addFailureRows({"Buzzer_setTrigger"_s}); }

    /** The button is out of step with the device then, until the page is shown again. */
    void buttonFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabBuzzerDlg page;
        page.show();
        fault(operation, code, 1);
        calls();
        const auto *button = child<QPushButton>(&page, "buttonOn");
        click(&page, "buttonOn");
        QCOMPARE(calls(), QStringList{"Buzzer_setTrigger(true) = %1"_s.arg(code)});
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "setTrigger"_s)});
        QVERIFY(button->isChecked());
        QCOMPARE(button->text(), "Off"_s);
        QVERIFY(button->isVisible());
        page.hide();
        page.show();
        QVERIFY(!button->isChecked());
        QCOMPARE(button->text(), "Off"_s);
    }

    void leavingDoesNotSilence()
    {
        tabBuzzerDlg page;
        page.show();
        click(&page, "buttonOn");
        calls();
        page.hide();
        QCOMPARE(calls(), QStringList());
        QCOMPARE(unit("Buzzer.trigger"_s), "true"_s);
        page.show();
        QCOMPARE(calls().constLast(), "Buzzer_getTrigger() = 0 [true]"_s);
        QVERIFY(child<QPushButton>(&page, "buttonOn")->isChecked());
        QCOMPARE(child<QPushButton>(&page, "buttonOn")->text(), "On"_s);
    }

private:
    QString text(const tabBuzzerDlg &page, const char *label)
    {
        return child<QLabel>(&page, label)->text();
    }
};

VORN_TEST_MAIN(BuzzerPageTest)
#include "tst_buzzerpage.moc"
