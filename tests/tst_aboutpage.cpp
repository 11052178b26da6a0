#include "report/sections.h"
#include "report/systemReport.h"
#include "report/tabAboutDlg.h"
#include "tests/support/PageTest.h"
#include "tests/support/system.h"

#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTemporaryDir>

#include <memory>

using namespace support;

namespace {

/** The page with its widgets at hand. */
struct Page : tabAboutDlg {
    QComboBox *selection = child<QComboBox>(this, "comboBoxSelection");
    QPlainTextEdit *info = child<QPlainTextEdit>(this, "textEditInfo");
    QPushButton *save = child<QPushButton>(this, "pushButtonSaveAs");

    void clickSave() { QTest::mouseClick(save, Qt::LeftButton); }
};

struct Entry {
    const char *caption;
    QString (*text)();
};

constexpr Entry entries[] = {
    {"EEPROM data", eepromDataText},
    {"Diagnostic data", diagnosticDataText},
    {"ADC values", adcDataText},
    {"CPU board data", cpuBoardDataText},
    {"System report", generateSystemReport},
    {"Battery data", batteryDataText},
};

QStringList captions(int count)
{
    QStringList texts;
    for (int index = 0; index < count; ++index)
        texts << latin1(entries[index].caption);
    return texts;
}

/** A report without the time at which it was made. */
QString timeless(QString text)
{
    return text.remove(QRegularExpression("report generated on: [^\n]*"_s));
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

// A sanitizer's own book-keeping is no part of the program's memory.
#ifdef VORN_ADDRESS_SANITIZER
constexpr bool instrumented = true;
#else
constexpr bool instrumented = false;
#endif

/** The log file beside this program that goes into the report. */
QString serviceLog()
{
    return QCoreApplication::applicationDirPath() + "/VornAuxService.log"_s;
}

} // namespace

class AboutPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        folder = std::make_unique<QTemporaryDir>();
    }

    void cleanup()
    {
        folder.reset();
        QFile::remove(serviceLog());
        PageTest::cleanup();
    }

    void readsFirstSectionWhenMade()
    {
        const QString text = eepromDataText();
        const QStringList reads = calls();
        {
            const Page page;
            QCOMPARE(calls(), QStringList({"Battery_create()"_s,
                                  "Battery_isAvailable() = 0 [true]"_s, "Battery_release()"_s}) +
                                  reads);
            QCOMPARE(items(page.selection), captions(6));
            for (int index = 0; index < page.selection->count(); ++index)
                QVERIFY(!page.selection->itemData(index).isValid());
            QCOMPARE(page.selection->currentIndex(), 0);
            QCOMPARE(page.info->toPlainText(), text);
            QVERIFY(!text.isEmpty());
        }
        // The page keeps no handle.
        QCOMPARE(calls(), QStringList());
    }

    void batteryEntry_data()
    {
        QTest::addColumn<bool>("available");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("count");
        QTest::newRow("battery") << true << 0 << 6;
        QTest::newRow("no battery") << false << 0 << 5;
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << true << code << 5;
    }

    void batteryEntry()
    {
        QFETCH(bool, available);
        QFETCH(int, code);
        QFETCH(int, count);
        setUnit("Battery.available"_s, available ? "true"_s : "false"_s);
        if (code != 0)
            fault("Battery_isAvailable"_s, code);
        Page page;
        page.show();
        QCOMPARE(items(page.selection), captions(count));
        QVERIFY(!page.info->toPlainText().isEmpty());
    }

    void showingReadsNothing()
    {
        Page page;
        calls();
        const QString text = page.info->toPlainText();
        setUnit("Hardware.unitSerialNumber"_s, "changed"_s);
        page.show();
        page.hide();
        page.show();
        QCOMPARE(calls(), QStringList());
        QCOMPARE(page.info->toPlainText(), text);
        // Nor does a choice wait for it.
        page.hide();
        page.selection->setCurrentIndex(2);
        QCOMPARE(page.info->toPlainText(), adcDataText());
    }

    void selects_data()
    {
        QTest::addColumn<int>("index");
        for (int index = 0; index < int(std::size(entries)); ++index)
            QTest::newRow(entries[index].caption) << index;
    }

    void selects()
    {
        QFETCH(int, index);
        Page page;
        page.show();
        // From the neighbour above or, for the first, below.
        page.selection->setCurrentIndex(index == 0 ? 1 : index - 1);
        dialogs.take();
        calls();
        const QString text = entries[index].text();
        const QStringList reads = calls();
        const QStringList told = boxes(&page);
        QTest::keyClick(page.selection, index == 0 ? Qt::Key_Up : Qt::Key_Down);
        QCOMPARE(page.selection->currentIndex(), index);
        QCOMPARE(calls(), reads);
        QCOMPARE(timeless(page.info->toPlainText()), timeless(text));
        QCOMPARE(boxes(&page), told);
    }

    void choosingTheChosenReadsNothing()
    {
        Page page;
        page.show();
        page.selection->setCurrentIndex(2);
        calls();
        page.selection->setCurrentIndex(2);
        QTest::keyClick(page.selection, Qt::Key_A); // "ADC values", which it is already
        QCOMPARE(page.selection->currentIndex(), 2);
        QCOMPARE(calls(), QStringList());
    }

    void noSelection()
    {
        Page page;
        calls();
        page.selection->setCurrentIndex(-1);
        QCOMPARE(page.info->toPlainText(), QString());
        QCOMPARE(calls(), QStringList());
        page.selection->clear();
        QCOMPARE(page.info->toPlainText(), QString());
        page.selection->setCurrentIndex(0);
        QCOMPARE(calls(), QStringList());
    }

    void failingUnit_data() { addFailureCodes(); }

    void failingUnit()
    {
        QFETCH(int, code);
        Page page;
        page.show();
        for (const char *operation : {"Hardware_getMainPcbSerial", "Diagnostics_getSSTemp",
                 "Adc_getVoltage", "Battery_getVoltageLevel"})
            fault(latin1(operation), code);
        // Failures are lines of the text, never dialogs.
        for (const int index : {0, 1, 2, 5}) {
            page.selection->setCurrentIndex(-1);
            page.selection->setCurrentIndex(index);
            QCOMPARE(page.info->toPlainText(), entries[index].text());
        }
        QCOMPARE(dialogs.takeTexts(), QStringList());
    }

    void saves_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << "report.txt"_s;
        QTest::newRow("without suffix") << "report"_s;
        QTest::newRow("other suffix") << "report.log"_s;
        QTest::newRow("blanks") << "my report of today.txt"_s;
        QTest::newRow("umlauts") << QString::fromUtf8("Pr\xC3\xBC"
                                                      "fbericht \xC3\x9F.txt");
        QTest::newRow("Japanese") << QString::fromUtf8("\xE6\x97\xA5\xE6\x9C\xAC.txt");
    }

    void saves()
    {
        QFETCH(QString, name);
        const QString path = folder->filePath(name);
        Page page;
        page.show();
        calls();
        dialogs.planFile(path);
        page.clickSave();
        const auto seen = dialogs.take();
        QCOMPARE(seen.count(), 1);
        QCOMPARE(seen.constFirst().className, "QFileDialog"_s);
        QCOMPARE(seen.constFirst().title, "Save Data"_s);
        QCOMPARE(seen.constFirst().parent, &page);
        QCOMPARE(calls(), QStringList());
        QCOMPARE(content(path), page.info->toPlainText().toLatin1());
        QVERIFY(QFile::remove(path));
        QCOMPARE(QDir(folder->path()).entryList(QDir::Files), QStringList());
    }

    void savesLatin1()
    {
        setUnit("Hardware.mainManufacturingDate"_s, QString::fromUtf8("Fr\xC3\xBChling \xC2\xB0"));
        const QString path = folder->filePath("latin1.txt"_s);
        Page page;
        page.show();
        dialogs.planFile(path);
        page.clickSave();
        dialogs.take();
        QVERIFY2(content(path).contains("Fr\xFChling \xB0"), content(path).constData());
        QVERIFY(!content(path).contains('\r'));
    }

    /** The window shows what only the file can't hold. */
    void decodedLog()
    {
        const QString path = folder->filePath("decoded.txt"_s);
        QFile log(serviceLog());
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.write("\xEF\xBB\xBF\xE2\x82\xAC \xC3\xBC \xF0\x9F\x92\xBB.\n");
        log.close();
        Page page;
        page.show();
        page.selection->setCurrentIndex(4);
        dialogs.take(); // of the board's library
        QVERIFY(page.info->toPlainText().contains(QStringLiteral("\u20AC \u00FC \U0001F4BB.\n")));
        dialogs.planFile(path);
        page.clickSave();
        dialogs.take();
        QVERIFY2(content(path).contains("? \xFC ?\?.\n"), content(path).constData());
    }

    void savesWhatIsShown()
    {
        Page page;
        page.show();
        page.selection->setCurrentIndex(2);
        const QByteArray shown = page.info->toPlainText().toLatin1();
        for (const char *name : {"first.txt", "second.txt"}) {
            dialogs.planFile(folder->filePath(latin1(name)));
            page.clickSave();
            QCOMPARE(dialogs.take().count(), 1);
            QCOMPARE(content(folder->filePath(latin1(name))), shown);
            fault("Adc_getVoltage"_s, 18);
        }
    }

    void replacesFile()
    {
        const QString path = folder->filePath("former.txt"_s);
        QFile former(path);
        QVERIFY(former.open(QIODevice::WriteOnly));
        former.write(QByteArray(100'000, 'x'));
        former.close();
        Page page;
        page.show();
        dialogs.planFile(path);
        dialogs.plan(QMessageBox::Yes); // the file dialog asks whether to replace it
        page.clickSave();
        QCOMPARE(dialogs.take().count(), 2);
        QCOMPARE(content(path), page.info->toPlainText().toLatin1());
    }

    void cancelledDialog()
    {
        QStringList filters;
        Page page;
        page.show();
        dialogs.plan([&](QDialog *dialog) {
            const auto *files = qobject_cast<QFileDialog *>(dialog);
            filters = files->nameFilters();
            QCOMPARE(files->acceptMode(), QFileDialog::AcceptSave);
            QCOMPARE(files->defaultSuffix(), QString());
            dialog->reject();
        });
        page.clickSave();
        QCOMPARE(dialogs.take().count(), 1);
        QCOMPARE(filters, QStringList({"Text Files (*.txt)"_s, "All Files (*)"_s}));
    }

    void unwritable_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing folder") << QDir::rootPath() + "no/where/report.txt"_s;
        QTest::newRow("below a file") << QCoreApplication::applicationFilePath() + "/report.txt"_s;
    }

    void unwritable()
    {
        QFETCH(QString, path);
        QFile probe(path);
        QVERIFY(!probe.open(QIODevice::WriteOnly));
        Page page;
        page.show();
        const QString shown = page.info->toPlainText();
        dialogs.planFile(path);
        page.clickSave();
        QCOMPARE(boxes(&page).value(1), box(QMessageBox::Information, "Unable to open file",
                                            probe.errorString(), "OK", Qt::AutoText));
        QCOMPARE(page.info->toPlainText(), shown);
    }

    void largeLog()
    {
        constexpr qint64 size = 100'000'000;
        const QByteArray line("2026-03-08 12:34:56.789 VornAuxService: battery voltage 12.3 V, "
                              "temperature 31 C\n");
        QFile log(serviceLog());
        QVERIFY(log.open(QIODevice::WriteOnly));
        const QByteArray part = line.repeated(10'000);
        for (qint64 written = 0; written < size; written += part.size())
            QCOMPARE(log.write(part), part.size());
        log.close();

        const QString path = folder->filePath("large.txt"_s);
        const qint64 start = residentMemory();
        Page page;
        page.show();
        page.selection->setCurrentIndex(4);
        dialogs.take(); // of the board's library
        dialogs.planFile(path);
        page.clickSave();
        QCOMPARE(dialogs.take().count(), 1);
        QVERIFY(QFileInfo(path).size() > size);
        const qint64 peak = peakMemory();
        QVERIFY2(peak > size, qPrintable(QString::number(peak)));
        // Two bytes for each character in the view; it was six.
        if (!instrumented)
            QVERIFY2(peak - start < 3 * size, qPrintable(QString::number(peak - start)));
    }

    /** What several lines to a paragraph must not change. */
    void largeTextIsWhole()
    {
        QByteArray log;
        for (int n = 0; log.size() < 3'000'000; ++n) {
            log += QByteArray::number(n);
            log += n % 1000 == 0 ? QByteArray(20'000, 'x') : QByteArray("\240\260 VornAux");
            log += n % 7 == 0 ? "\r\r\n" : n % 11 == 0 ? "a\rb\n\n" : "\r\n";
        }
        QFile file(serviceLog());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(log), qint64(log.size()));
        file.close();
        Page page;
        page.show();
        page.selection->setCurrentIndex(4);
        QPlainTextEdit plain; // as the toolkit shows it, line by line
        plain.setPlainText(generateSystemReport());
        dialogs.take(); // of the board's library
        QCOMPARE(timeless(page.info->toPlainText()), timeless(plain.toPlainText()));
        QVERIFY(page.info->blockCount() < plain.blockCount());
        // Qt 5 on Windows counts one line more, of 92,798.
        const int lines = plain.document()->lineCount();
        QVERIFY(
            qAbs(page.info->document()->lineCount() - lines) <= (QT_VERSION_MAJOR == 5 ? 1 : 0));
        QCOMPARE(page.info->verticalScrollBar()->value(), 0);
        QCOMPARE(page.info->textCursor().position(), 0);

        page.info->selectAll();
        page.info->copy();
        QCOMPARE(timeless(QApplication::clipboard()->text()), timeless(plain.toPlainText()));
        const QString path = folder->filePath("large.txt"_s);
        dialogs.planFile(path);
        page.clickSave();
        QCOMPARE(dialogs.take().count(), 1);
        QCOMPARE(content(path), page.info->toPlainText().toLatin1());
    }

    /** To its end, a page and a line at a time, and not over it. */
    void largeTextScrolls()
    {
        QFile file(serviceLog());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("A line that needs no second one\n").repeated(100'000));
        file.close();
        Page page;
        page.show();
        page.selection->setCurrentIndex(4);
        dialogs.take();
        QScrollBar *bar = page.info->verticalScrollBar();
        QVERIFY2(bar->maximum() > 100'000, qPrintable(QString::number(bar->maximum())));
        bar->setValue(50'000);
        const int reached = bar->value();
        // Qt 5 takes one of the next lines.
        QVERIFY2(qAbs(reached - 50'000) <= (QT_VERSION_MAJOR == 5 ? 3 : 0),
            qPrintable(QString::number(reached)));
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
        QVERIFY(bar->value() > reached && bar->value() < 50'100);
        bar->setValue(bar->maximum());
        const QPoint bottom = page.info->viewport()->rect().bottomLeft();
        const int left = page.info->document()->characterCount() -
                         page.info->cursorForPosition(bottom).position();
        QVERIFY2(left < 5, qPrintable(QString::number(left)));
    }

private:
    std::unique_ptr<QTemporaryDir> folder;
};

VORN_TEST_MAIN(AboutPageTest)
#include "tst_aboutpage.moc"
