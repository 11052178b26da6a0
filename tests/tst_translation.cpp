#include "frame/tabDlg.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "report/systemReport.h"
#include "telematics/tabTelematicsDlg.h"
#include "tests/support/DeviceTest.h"
#include "virtualunit/VirtualUnit.h"

#include <QDirIterator>
#include <QTabWidget>
#include <QTranslator>
#include <QXmlStreamReader>

#include <set>

using namespace support;

namespace {

const QString sourceDir = QStringLiteral(VORN_SOURCE_DIR "/");
const QChar mark(0x00AB);

/** A text with the context under which it is translated. */
using Caption = std::pair<QString, QString>;
using Captions = std::set<Caption>;

/** What pages set at run time and translate all the same. */
Captions runTimeCaptions()
{
    const QString about = "tabAboutDlg"_s;
    return {{about, "Save Data"_s}, {about, "Text Files (*.txt);;All Files (*)"_s},
        {about, "Unable to open file"_s}};
}

QStringList formFiles()
{
    QStringList files;
    for (const auto *room : {"frame", "frame/window", "report", "pages", "telematics"}) {
        QDirIterator it(sourceDir + QLatin1String(room), {"*.ui"_s}, QDir::Files);
        while (it.hasNext())
            files << it.next();
    }
    files.sort();
    return files;
}

/** What a form shows: its captions, and the texts that it withholds from translation. */
struct FormTexts {
    QString name;
    Captions captions;
    QStringList untranslated; ///< "property: text"
};

FormTexts readForm(const QString &file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file));
    QXmlStreamReader xml(&source);
    FormTexts form;
    QString property;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == "class"_s && form.name.isEmpty())
            form.name = xml.readElementText();
        if (xml.attributes().hasAttribute("name"_s))
            property = xml.attributes().value("name"_s).toString();
        if (xml.name() != "string"_s)
            continue;
        const bool fixed = xml.attributes().hasAttribute("notr"_s);
        const QString text = xml.readElementText();
        if (fixed && !text.isEmpty())
            form.untranslated << property + ": "_s + text;
        else if (!text.isEmpty())
            form.captions.insert({form.name, text});
    }
    return form;
}

Captions formCaptions()
{
    Captions all;
    for (const QString &file : formFiles())
        all.merge(readForm(file).captions);
    return all;
}

Captions readTranslationSource()
{
    QFile source(sourceDir + "translations/VornSettings_en.ts"_s);
    if (!source.open(QIODevice::ReadOnly))
        qFatal("no translation source");
    QXmlStreamReader xml(&source);
    Captions all;
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == "name"_s)
            context = xml.readElementText();
        else if (xml.name() == "source"_s)
            all.insert({context, xml.readElementText()});
    }
    return all;
}

/** Marks every text of ours that asks for a translation, and remembers it. */
class PseudoLocale : public QTranslator
{
public:
    PseudoLocale() { QCoreApplication::installTranslator(this); }
    ~PseudoLocale() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        // The toolkit's own classes all begin alike, and none of ours does.
        if (*context == 'Q')
            return {};
        const QString text = QString::fromUtf8(sourceText);
        asked.insert({QString::fromUtf8(context), text});
        return mark + text;
    }

    mutable Captions asked;
};

QStringList lines(const Captions &captions)
{
    QStringList list;
    for (const auto &[context, text] : captions)
        list << context + ": "_s + text;
    return list;
}

Captions without(Captions captions, const Captions &others)
{
    for (const Caption &caption : others)
        captions.erase(caption);
    return captions;
}

} // namespace

class TranslationTest : public DeviceTest
{
    Q_OBJECT

private:
    /** The user's way through every page and every tab of it. */
    static void seeEverything(VornSettings &window)
    {
        window.show();
        for (int index = 0; index < tabCount; ++index) {
            window.showTab(index);
            for (auto *tabs : window.findChildren<QTabWidget *>()) {
                if (!tabs->isVisible())
                    continue;
                for (int tab = 0; tab < tabs->count(); ++tab)
                    tabs->setCurrentIndex(tab);
                tabs->setCurrentIndex(0);
            }
        }
        window.showTab(0);
    }

private slots:
    void initTestCase() { setApplicationLook(); }

    void sourceHoldsAllCaptions()
    {
        Captions expected = formCaptions();
        QVERIFY(expected.size() > 100);
        expected.merge(runTimeCaptions());
        const Captions source = readTranslationSource();
        QCOMPARE(lines(without(expected, source)), QStringList());
        QCOMPARE(lines(without(source, expected)), QStringList());
    }

    void formsWithholdNothing_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString &file : formFiles())
            QTest::newRow(qPrintable(QFileInfo(file).fileName())) << file;
    }

    void formsWithholdNothing()
    {
        QFETCH(QString, file);
        for (const QString &text : readForm(file).untranslated)
            QVERIFY2(text.startsWith("styleSheet: "_s), qPrintable(text));
    }

    /** Each caption is asked for under its form's name, and nothing else is. */
    void captionsAreTranslated()
    {
        PseudoLocale locale;
        {
            VornSettings window;
            seeEverything(window);
            QCOMPARE(window.windowTitle(), mark + "Settings"_s);
            QCOMPARE(child<QLabel>(&window, "tabTitle")->text(), mark + "Menu"_s);
            QCOMPARE(child<QLabel>(&window, "label_15")->text(), mark + "Telematics"_s);
        }
        const Captions captions = formCaptions();
        QCOMPARE(lines(without(captions, locale.asked)), QStringList());
        QCOMPARE(lines(without(without(locale.asked, captions), runTimeCaptions())), QStringList());
        dialogs.take();
    }

    void toolTipsOfAbsentFeaturesAreNot()
    {
        useProfile("basic"_s);
        setUnit("Telematics.available"_s, "0"_s);
        PseudoLocale locale;
        VornSettings window;
        QCOMPARE(child<QPushButton>(&window, "pushButtonTelematics")->toolTip(),
            "Telematics module is not available"_s);
    }

    void emptiedGpsFieldsAre()
    {
        const PseudoLocale locale;
        tabTelematicsDlg page;
        auto *tabs = child<QTabWidget>(&page, "tabWidget");
        const QString translated = mark + "INVALID"_s;
        const QList<QLineEdit *> fields{child<QLineEdit>(&page, "editGpsDate"),
            child<QLineEdit>(&page, "editGpsPos"), child<QLineEdit>(&page, "editGpsSat"),
            child<QLineEdit>(&page, "editGpsAlt"), child<QLineEdit>(&page, "editGpsSpeed")};
        for (QLineEdit *field : fields)
            field->setText("old"_s);
        tabs->setCurrentIndex(2);
        for (const QLineEdit *field : fields)
            QCOMPARE(field->text(), translated);
        tabs->setCurrentIndex(1);
        QCOMPARE(fields[0]->text(), "INVALID"_s);
        for (const QLineEdit *field : fields.mid(1))
            QCOMPARE(field->text(), translated);
        tabs->setCurrentIndex(0);
        dialogs.take();
    }

    void messagesAreNot()
    {
        PseudoLocale locale;
        for (const std::string &operation : virtualunit::operations())
            fault(QString::fromStdString(operation), 5);
        {
            VornSettings window;
            seeEverything(window);
        }
        const auto seen = dialogs.take();
        QVERIFY(seen.size() > 10);
        for (const Dialog &box : seen) {
            QVERIFY2(!box.text.contains(mark), qPrintable(box.text));
            QVERIFY2(!box.title.contains(mark), qPrintable(box.title));
        }
    }

    void reportIsNot()
    {
        PseudoLocale locale;
        QVERIFY(!generateSystemReport().contains(mark));
        for (const std::string &operation : virtualunit::operations())
            fault(QString::fromStdString(operation), 5);
        QVERIFY(!generateSystemReport().contains(mark));
        QCOMPARE(lines(locale.asked), QStringList());
        dialogs.take();
    }
};

VORN_TEST_MAIN(TranslationTest)
#include "tst_translation.moc"
