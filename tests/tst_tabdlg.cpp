#include "frame/reportError.h"
#include "frame/tabDlg.h"
#include "tests/support/DeviceTest.h"

#include <QLabel>

using namespace support;

namespace {

// What a page can reach of its base.
class Page : public tabDlg
{
public:
    using tabDlg::hideOrReport;
    using tabDlg::reportError;
    using tabDlg::showMessage;
    using tabDlg::tabDlg;
};

QString expectedText(int code, const char *operation)
{
    return "Error("_s + QString::number(code) + ") in "_s + QLatin1String(operation) + ": "_s +
           QLatin1String(deviceErrorText(code));
}

} // namespace

class TabDlgTest : public DeviceTest
{
    Q_OBJECT

private:
    void compareDialog(QWidget *parent, const QString &text)
    {
        const auto seen = dialogs.take();
        QCOMPARE(seen.size(), 1);
        const Dialog &box = seen.constFirst();
        QCOMPARE(box.className, "QMessageBox"_s);
        QCOMPARE(box.title, "Vornsettings"_s);
        QCOMPARE(box.text, text);
        QCOMPARE(box.format, Qt::PlainText);
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QStringList("OK"_s));
        QCOMPARE(box.parent, parent);
        QVERIFY(box.modal);
    }

private slots:
    void isPlainDialog()
    {
        Page page;
        QVERIFY(!page.parentWidget());
        QCOMPARE(page.windowType(), Qt::Dialog);
        QCOMPARE(page.windowTitle(), QString());
        QVERIFY(page.findChildren<QWidget *>().isEmpty());

        QWidget frame;
        auto *child = new Page(&frame);
        QCOMPARE(child->parentWidget(), &frame);
        QCOMPARE(calls(), QStringList());
    }

    void addsNoSignalsOrSlots()
    {
        QCOMPARE(tabDlg::staticMetaObject.methodCount(), QDialog::staticMetaObject.methodCount());
    }

    void errorBoxes_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("operation");
        for (const int code : {1, 3, 5, 7, 18, 20, 255, 123456789, -1})
            QTest::addRow("code %d", code) << code << QByteArray("getVolume");
        QTest::newRow("a whole sentence") << 5 << QByteArray("the light filter could not be set");
        QTest::newRow("a name like a place marker") << 5 << QByteArray("%1 of %3 %2");
        QTest::newRow("no name") << 5 << QByteArray();
    }

    void errorBoxes()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, operation);
        Page page;
        page.reportError(code, operation.constData());
        compareDialog(&page, expectedText(code, operation.constData()));
        page.hideOrReport(code, operation.constData(), {});
        compareDialog(&page, expectedText(code, operation.constData()));
        reportError(code, operation.constData());
        compareDialog(nullptr, expectedText(code, operation.constData()));
    }

    void notSupported()
    {
        Page page;
        page.reportError(DEVICE_NOT_SUPPORTED, "getVolume");
        compareDialog(&page, expectedText(2, "getVolume"));
        QVERIFY(expectedText(2, "getVolume").startsWith("Error(2) in getVolume: "_s));
        reportError(DEVICE_NOT_SUPPORTED, "getVolume");
        QCOMPARE(dialogs.takeTexts(), QStringList());
    }

    void success()
    {
        Page page;
        page.reportError(DEVICE_OK, "getVolume");
        reportError(DEVICE_OK, "getVolume");
        QCOMPARE(dialogs.takeTexts(), QStringList());
    }

    void hidesWhatDoesNotExist()
    {
        Page page;
        QLabel volume(&page);
        QLabel caption(&page);
        QLabel other(&page);
        page.hideOrReport(5, "getVolume", {&volume, &caption});
        QCOMPARE(dialogs.takeTexts(), QStringList(expectedText(5, "getVolume")));
        QVERIFY(!volume.isHidden());
        QVERIFY(!caption.isHidden());
        page.hideOrReport(DEVICE_NOT_SUPPORTED, "getVolume", {&volume, &caption});
        QVERIFY(volume.isHidden());
        QVERIFY(caption.isHidden());
        QVERIFY(!other.isHidden());
    }

    void messages()
    {
        Page page;
        page.showMessage("The value is not a number"_s);
        compareDialog(&page, "The value is not a number"_s);
        page.showMessage(QString());
        compareDialog(&page, QString());
    }

    void blocksUntilAnswered()
    {
        Page page;
        bool answered = false;
        dialogs.plan([&answered](QDialog *box) {
            answered = true;
            box->reject();
        });
        page.reportError(5, "getVolume");
        QVERIFY(answered);
        QCOMPARE(dialogs.take().size(), 1);
    }
};

VORN_TEST_MAIN(TabDlgTest)
#include "tst_tabdlg.moc"
