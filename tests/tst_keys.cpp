#include "tests/support/PageWalk.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/ViewTest.h"
#include "tests/support/hexFile.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>

#include <memory>

using namespace support;

namespace {

/** A key as a technician presses it: it goes to what has the focus, or to a list that is open. */
void press(QWidget *window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(window->windowHandle(), key, modifiers);
}

/** Keys by name, "Tab*3 Space"; what begins with an apostrophe is typed, as in "'Hello". */
void type(QWidget *window, const QString &keys)
{
    static const QHash<QString, Qt::Key> names{{"Tab"_s, Qt::Key_Tab}, {"Space"_s, Qt::Key_Space},
        {"Return"_s, Qt::Key_Return}, {"Left"_s, Qt::Key_Left}, {"Right"_s, Qt::Key_Right},
        {"Up"_s, Qt::Key_Up}, {"Down"_s, Qt::Key_Down}, {"F4"_s, Qt::Key_F4},
        {"Home"_s, Qt::Key_Home}, {"End"_s, Qt::Key_End}, {"Escape"_s, Qt::Key_Escape},
        {"Backspace"_s, Qt::Key_Backspace}};
    for (const QString &word : keys.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (word.startsWith(QLatin1Char('\''))) {
            const QString text = word.mid(1);
            for (const QChar letter : text)
                QTest::sendKeyEvent(QTest::Click, window->windowHandle(), Qt::Key_unknown,
                    QString(letter), Qt::NoModifier);
            continue;
        }
        const QStringList parts = word.split(QLatin1Char('*'));
        if (!names.contains(parts.first()))
            qFatal("no key %s", qPrintable(word));
        for (int times = parts.value(1, "1"_s).toInt(); times > 0; --times)
            press(window, names.value(parts.first()));
    }
}

/** Says yes, by keys. */
void agree(QDialog *dialog)
{
    const auto *box = qobject_cast<QMessageBox *>(dialog);
    if (!box)
        return dialog->reject();
    const QAbstractButton *button = box->button(QMessageBox::Yes);
    if (!button)
        button = box->button(QMessageBox::Ok);
    for (int tabs = 0; QApplication::focusWidget() != button && tabs < 5; ++tabs)
        press(dialog, Qt::Key_Tab);
    press(dialog, Qt::Key_Space);
}

/** A field in which characters are typed. */
bool takesText(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QTextEdit *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget);
}

} // namespace

/** The window with a keyboard alone. */
class KeysTest : public ViewTest
{
    Q_OBJECT

private:
    int clicks = 0;

    /** Starts with the menu and goes to the page by keys. */
    void openByKeys(int index)
    {
        open({menuTab, 0});
        type(window.get(), "Tab*%1 Return"_s.arg(pageAt(index).place));
        page = visiblePage(*window);
        calls();
    }

    QList<QWidget *> allStops() const
    {
        return readingOrder(page) + QList<QWidget *>{child<QPushButton>(window.get(), "buttonMenu"),
                                        child<QPushButton>(window.get(), "buttonExit")};
    }

    /** The calls since the last time that do something. */
    QStringList writes()
    {
        static const QRegularExpression reading("^\\w+_(get|is|has|create|release)|^deviceError"_s);
        QStringList lines;
        for (const QString &line : mainThreadCalls()) {
            if (!line.contains(reading))
                lines << line;
        }
        return lines;
    }

private slots:
    /** The menu is the first page, and opens as all do. */
    void start()
    {
        setUnit("Battery.available"_s, "0"_s);
        window = std::make_unique<VornSettings>();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        QCOMPARE(nameOf(QApplication::focusWidget()), "pushButtonVersion"_s);
    }

    void order_data() { addViewRows(); }

    /** A page opens with the focus on its first control; Tab goes on as the eye does, then to the
     * window's own buttons, and Shift+Tab goes the same way back. */
    void order()
    {
        openRow();
        const QList<QWidget *> expected = allStops();
        QCOMPARE(nameOf(QApplication::focusWidget()), nameOf(expected.first()));
        QCOMPARE(namesOf(tabStops(*window)), namesOf(expected));
        for (auto stop = expected.rbegin(); stop != expected.rend(); ++stop) {
            press(window.get(), Qt::Key_Backtab, Qt::ShiftModifier);
            QCOMPARE(nameOf(QApplication::focusWidget()), nameOf(*stop));
        }
        QCOMPARE(writes(), QStringList());
    }

    void readOnlyFields_data() { addViewRows(); }

    /** They are no stops, but the mouse marks their text for copying. */
    void readOnlyFields()
    {
        openRow();
        for (auto *field : page->findChildren<QLineEdit *>()) {
            if (!field->isReadOnly() || !field->isVisible())
                continue;
            QVERIFY2(!allStops().contains(field), qPrintable(nameOf(field)));
            field->setText("abc"_s);
            QTest::mouseClick(field, Qt::LeftButton);
            QTest::mouseDClick(field, Qt::LeftButton, Qt::NoModifier, {12, field->height() / 2});
            QCOMPARE(field->selectedText(), "abc"_s);
            QCOMPARE(QApplication::focusWidget(), field);
            QTest::mouseRelease(field, Qt::LeftButton);
        }
    }

    /** What can't be worked at present is passed over. */
    void disabledAndHiddenControls()
    {
        open({displayTab, 0});
        for (const char *name : {"checkBoxABLSoftTransitions", "sliderSensitivity"})
            child<QWidget>(page, name)->setEnabled(false);
        child<QWidget>(page, "sliderBacklightLevel")->hide();
        window->showTab(menuTab);
        window->showTab(displayTab);
        QCOMPARE(namesOf(tabStops(*window)),
            QStringList({"checkBoxABLEnable"_s, "checkBoxABLSoftTransitions"_s,
                "sliderSensitivity"_s, "checkBoxLedDim"_s, "buttonMenu"_s, "buttonExit"_s}));
        child<QWidget>(page, "checkBoxABLSoftTransitions")->setEnabled(false);
        QCOMPARE(
            namesOf(tabStops(*window)), QStringList({"checkBoxABLEnable"_s, "sliderSensitivity"_s,
                                            "checkBoxLedDim"_s, "buttonMenu"_s, "buttonExit"_s}));
    }

    void pressButtons_data() { addViewRows(); }

    /** Space and Return press the button that has the focus, once however long they are held. */
    void pressButtons()
    {
        openRow();
        for (QWidget *stop : allStops()) {
            auto *button = qobject_cast<QPushButton *>(stop);
            if (!button)
                continue;
            button->disconnect();
            const QSignalSpy clicked(button, &QPushButton::clicked);
            button->setFocus();
            int times = 0;
            for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
                press(window.get(), key);
                QVERIFY2(clicked.size() == ++times, qPrintable(nameOf(button)));
                for (int i = 0; i < 3; ++i) {
                    QKeyEvent repeated(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
                    QCoreApplication::sendEvent(button, &repeated);
                }
                QVERIFY2(clicked.size() == times, qPrintable(nameOf(button)));
            }
            press(window.get(), Qt::Key_Return, Qt::ControlModifier);
            QCOMPARE(clicked.size(), times);
        }
    }

    void returnElsewhere_data() { addViewRows(); }

    /** Return in a field, on a box or a slider presses nothing. */
    void returnElsewhere()
    {
        openRow();
        clicks = 0;
        for (auto *button : window->findChildren<QPushButton *>())
            connect(button, &QPushButton::clicked, this, [this] { ++clicks; });
        const QWidget *shown = page;
        for (QWidget *stop : allStops()) {
            if (qobject_cast<QPushButton *>(stop))
                continue;
            stop->setFocus();
            press(window.get(), Qt::Key_Return);
            press(window.get(), Qt::Key_Enter);
            QVERIFY2(clicks == 0, qPrintable(nameOf(stop)));
            QCOMPARE(QApplication::focusWidget(), stop);
            QVERIFY(shown->isVisible());
            // A box of numbers hands its number over once more, as it always has.
            if (qobject_cast<QAbstractSpinBox *>(stop))
                calls();
        }
        QCOMPARE(writes(), QStringList());
    }

    void lists_data() { addViewRows(); }

    /** Lists open by keys, and Escape closes the list alone. */
    void lists()
    {
        openRow();
        for (QWidget *stop : allStops()) {
            auto *list = qobject_cast<QComboBox *>(stop);
            if (!list)
                continue;
            list->setFocus();
            for (const bool f4 : {true, false}) {
                press(window.get(), f4 ? Qt::Key_F4 : Qt::Key_Down,
                    f4 ? Qt::NoModifier : Qt::AltModifier);
                QVERIFY2(list->view()->isVisible(), qPrintable(nameOf(list)));
                press(window.get(), Qt::Key_Escape);
                QTRY_VERIFY(!list->view()->isVisible());
                QVERIFY(page->isVisible());
                QCOMPARE(QApplication::focusWidget(), list);
            }
        }
        QCOMPARE(writes(), QStringList());
        takeWarnings(); // the offscreen platform grabs no keyboard for lists
    }

    void otherKeys_data() { addViewRows(); }

    /** Function keys and letters have no meaning of their own, here as before. */
    void otherKeys()
    {
        openRow();
        for (QWidget *stop : allStops()) {
            stop->setFocus();
            for (const auto key : {Qt::Key_F1, Qt::Key_F2, Qt::Key_F3, Qt::Key_F4})
                if (key != Qt::Key_F4 || !qobject_cast<QComboBox *>(stop))
                    press(window.get(), key);
            if (!takesText(stop) && !qobject_cast<QComboBox *>(stop))
                type(window.get(), "'aemx1"_s);
            QVERIFY2(page->isVisible(), qPrintable(nameOf(stop)));
            QCOMPARE(QApplication::focusWidget(), stop);
            QVERIFY(!QApplication::activePopupWidget());
        }
        QCOMPARE(writes(), QStringList());
    }

    void escape_data() { addViewRows(); }

    /** From wherever the focus is. */
    void escape()
    {
        openRow();
        QFETCH(int, index);
        if (index == menuTab) {
            press(window.get(), Qt::Key_Escape);
            QVERIFY(!window->isVisible());
            return;
        }
        for (QWidget *stop : allStops()) {
            stop->setFocus();
            QCOMPARE(QApplication::focusWidget(), stop);
            press(window.get(), Qt::Key_Escape);
            QVERIFY2(!page->isVisible(), qPrintable(nameOf(stop)));
            QCOMPARE(nameOf(QApplication::focusWidget()), "pushButtonVersion"_s);
            window->showTab(index);
            dialogs.take();
        }
    }

    void jobs_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QStringList>("expected");
        QTest::addRow("display") << int(displayTab) << "Right Tab Space"_s
                                 << QStringList({"Backlight_setIntensity(1) = 0"_s,
                                        "Backlight_setAutomaticBLParams(true) = 0"_s,
                                        "Backlight_setAutomaticBLFilter(4, 8, 80, 2) = 0"_s,
                                        "Backlight_startAutomaticBL() = 0"_s});
        QTest::addRow("power") << int(powerTab) << "Tab*3 Space"_s
                               << QStringList({"Power_setExtFanPowerStatus(0) = 0"_s});
        QTest::addRow("power at start-up")
            << int(powerTab) << "Tab Up Tab*2 Space"_s
            << QStringList({"Config_setExtFanStartupPowerConfig(0) = 0"_s});
        QTest::addRow("heater") << int(heaterTab) << "End Backspace*4 '-12 Tab*2 Return"_s
                                << QStringList({"Config_setHeatingTempLimit(-12) = 0"_s});
        QTest::addRow("led") << int(ledTab) << "Right Tab Down Tab*6 Space"_s
                             << QStringList({"FrontLED_setSignal(2.1, 50) = 0"_s,
                                    "FrontLED_setStandardColor(1) = 0"_s,
                                    "FrontLED_setSignal(2.1, 50) = 0"_s,
                                    "FrontLED_setEnabledDuringStartup(1) = 0"_s});
        QTest::addRow("buzzer") << int(buzzerTab) << "Right Tab Left Tab Return"_s
                                << QStringList({"Buzzer_setFrequency(2410) = 0"_s,
                                       "Buzzer_setVolume(19) = 0"_s,
                                       "Buzzer_setTrigger(true) = 0"_s});
        QTest::addRow("can") << int(canTab) << "Down Tab Home Tab F4 Down Return Tab Return"_s
                             << QStringList({"Can_setFrameType(2, 2) = 0"_s,
                                    "Can_setBaudrate(2, 100) = 0"_s});
        QTest::addRow("digital-io")
            << int(digitalIOTab) << "Space Tab Space"_s
            << QStringList({"DigIO_setDigIO(4) = 0"_s, "DigIO_setDigIO(0) = 0"_s});
        QTest::addRow("light-sensor") << int(lightSensorTab) << "End Tab Up Tab*3 Space Return"_s
                                      << QStringList({"LightSensor_stopAverageCalc() = 0"_s,
                                             "LightSensor_startAverageCalc(2, 0, 100, 2) = 0"_s});
        QTest::addRow("touch profile") << int(touchTab) << "Tab Space Tab*2 Space"_s
                                       << QStringList({"Touch_setMode(2) = 0"_s});
        QTest::addRow("touch setting")
            << int(touchTab) << "Right Tab Down Tab Backspace*4 '77 Tab Return"_s
            << QStringList({"Touch_setAdvancedSetting(1, 77) = 0"_s});
        QTest::addRow("touch defaults") << int(touchTab) << "Right Tab*5 Return"_s
                                        << QStringList({"Touch_setAdvancedSetting(11, 1) = 0"_s});
        QTest::addRow("on-off")
            << int(onOffTab) << "End Tab Home Tab Backspace*5 '900 Tab*5 Space Tab Return"_s
            << QStringList({"Config_setLongButtonPressAction(0) = 0"_s,
                   "Config_setShortButtonPressAction(2) = 0"_s, "Config_setOnOffSigAction(1) = 0"_s,
                   "Config_setStartupTriggerConfig(1) = 0"_s, "Config_setSuspendMaxTime(120) = 0"_s,
                   "Config_setFrontBtnTrigTime(900) = 0"_s,
                   "Config_setExtOnOffSigTrigTime(2) = 0"_s, "Config_setPowerOnStartup(0) = 0"_s});
        QTest::addRow("telematics") << int(telematicsTab) << "Tab Space Tab*7 Space"_s
                                    << QStringList({"Telematics_setGPRSPowerStatus(0) = 0"_s,
                                           "Telematics_setGPSStartUpPowerStatus(0) = 0"_s});
        QTest::addRow("shutdown") << int(advancedTab) << "Tab*6 Return"_s
                                  << QStringList({"Firmware_shutDown() = 0"_s});
    }

    /** Each page's main job, from the start of the program. */
    void jobs()
    {
        QFETCH(int, index);
        QFETCH(QString, keys);
        QFETCH(QStringList, expected);
        setUnit("Backlight.intensity"_s, "0"_s); // as the slider stands until the first refresh
        dialogs.setDefaultAnswer(agree);
        openByKeys(index);
        type(window.get(), keys);
        QCOMPARE(writes(), expected);
        dialogs.take();
        takeWarnings(); // the offscreen platform grabs no keyboard for lists
    }

    /** What a page shows, it asks the unit for. */
    void temperatureIsReadAnew()
    {
        openByKeys(temperatureTab);
        setUnit("Diagnostics.ssTemp"_s, "33"_s);
        type(window.get(), "Return"_s);
        QCOMPARE(child<QLineEdit>(page, "editTemp_SS")->text(), QString::fromUtf8("33°C (91.4°F)"));
        QVERIFY(calls().contains("Diagnostics_getSSTemp() = 0 [33]"_s));
    }

    void versionsAreRead()
    {
        open({menuTab, 0});
        calls();
        type(window.get(), "Return"_s);
        QVERIFY(calls().join(QLatin1Char(' ')).startsWith("Versions_getFPGAVersion()"_s));
        QCOMPARE(nameOf(QApplication::focusWidget()), "buttonMenu"_s);
        type(window.get(), "Return"_s);
        QCOMPARE(nameOf(QApplication::focusWidget()), "pushButtonVersion"_s);
    }

    /** A report is chosen, read to its end and saved. */
    void reportIsSaved()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath("report.txt"_s);
        openByKeys(aboutTab);
        dialogs.plan([&file](QDialog *dialog) {
            type(dialog, QLatin1Char('\'') + file + " Return"_s);
            if (dialog->isVisible()) // the first one went to the list of names that begin so
                press(dialog, Qt::Key_Return);
            if (dialog->isVisible())
                dialog->reject();
        });
        type(window.get(), "Down*2 Tab"_s);
        QVERIFY(calls().contains("Adc_create()"_s));
        auto *text = child<QPlainTextEdit>(page, "textEditInfo");
        QVERIFY(text->verticalScrollBar()->value() == 0);
        press(window.get(), Qt::Key_PageDown);
        QVERIFY(text->verticalScrollBar()->value() > 0);
        type(window.get(), "Tab Return"_s);
        QFile saved(file);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromLatin1(saved.readAll()), text->toPlainText());
        QCOMPARE(dialogs.take().size(), 1);
        takeWarnings();
    }

    void firmwareIsProgrammed()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("front.hex"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(hexFile(QByteArray(64, 'x'))) > 0);
        file.close();
        openByKeys(advancedTab);
        dialogs.setDefaultAnswer(agree);
        type(window.get(), QLatin1Char('\'') + path + " Tab*3 Return"_s);
        QCOMPARE(writes().value(0), "Firmware_startFrontUpgrade(\"%1\", false) = 0"_s.arg(path));
        QCOMPARE(dialogs.take().size(), 2);
    }

    void factoryDefaults()
    {
        openByKeys(advancedTab);
        dialogs.setDefaultAnswer(agree);
        type(window.get(), "Tab*7 Space"_s);
        QCOMPARE(writes().size(), 52);
        QCOMPARE(dialogs.take().size(), 2);
    }

    /** The PIN, typed and sent. */
    void pinIsSent()
    {
        PseudoTerminal modem;
        modem.setName("COM3"_s);
        openByKeys(telematicsTab);
        press(window.get(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        type(window.get(), "Tab '1234 Tab Return"_s);
        QCOMPARE(modem.receiveAll(), QByteArray("AT+CPIN=1234\r\n"));
        QCOMPARE(child<QPlainTextEdit>(page, "textEditGSM")->toPlainText(), "No data received"_s);
    }
};

VORN_TEST_MAIN(KeysTest)
#include "tst_keys.moc"
