#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "tests/support/PageTest.h"
#include "tests/support/PageWalk.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/contrast.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGraphicsOpacityEffect>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QStyleOptionGroupBox>
#include <QTabBar>
#include <QTextEdit>

using namespace support;

namespace {

constexpr double leastContrast = 4.5;
constexpr double leastOfLargeText = 3.0;
constexpr int largeText = 20; // pixels, bold

bool isNear(QRgb one, QRgb other)
{
    constexpr int tolerance = 24;
    return qAbs(qRed(one) - qRed(other)) <= tolerance &&
           qAbs(qGreen(one) - qGreen(other)) <= tolerance &&
           qAbs(qBlue(one) - qBlue(other)) <= tolerance;
}

/** The pixels around those of the text's own colour, so many pixels away. */
QList<QRgb> surroundings(const QImage &picture, QRgb text, int distance)
{
    const auto reach = [&](QPoint at, int far) {
        for (int y = at.y() - far; y <= at.y() + far; ++y) {
            for (int x = at.x() - far; x <= at.x() + far; ++x) {
                if (picture.valid(x, y) && isNear(picture.pixel(x, y), text))
                    return true;
            }
        }
        return false;
    };
    QList<QRgb> found;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (reach({x, y}, distance) && !reach({x, y}, distance - 1))
                found << picture.pixel(x, y);
        }
    }
    return found;
}

/**
 * Contrast of a text to what it stands on, in a picture of it; 0 if there is no such text. Measured
 * two pixels beside the letters, since the pixel between is smoothed. A quarter of it may be worse:
 * those are the smoothed pixels of the next letter.
 */
double contrastOf(QRgb text, const QImage &picture)
{
    QList<double> contrasts;
    for (const QRgb ground : surroundings(picture, text, 2))
        contrasts << contrast(text, ground);
    if (contrasts.isEmpty())
        return 0;
    std::sort(contrasts.begin(), contrasts.end());
    return contrasts[contrasts.size() / 4];
}

/** A text that is seen: where, in the coordinates of its widget, and how. */
struct Text {
    QString words;
    QRect place;
    QColor colour;
};

QRect titlePlace(const QGroupBox *group)
{
    QStyleOptionGroupBox option;
    option.initFrom(group);
    option.text = group->title();
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    return group->style()->subControlRect(
        QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, group);
}

QList<Text> textsOf(const QWidget *widget)
{
    constexpr int edge = 5; // pixels, of frames and their corners
    const QRect inside = widget->rect().adjusted(edge, edge, -edge, -edge);
    const QColor colour = widget->palette().color(widget->foregroundRole());
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return {{label->text(), label->rect(), colour}};
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return {{button->text(), inside, colour}};
    if (const auto *group = qobject_cast<const QGroupBox *>(widget))
        return {{group->title(), titlePlace(group), colour}};
    if (const auto *box = qobject_cast<const QComboBox *>(widget))
        return {{box->currentText(), inside.adjusted(0, 0, -40, 0), colour}};
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return {{field->text(), field->rect().adjusted(2, 2, -2, -2), colour}};
    if (const auto *bar = qobject_cast<const QProgressBar *>(widget))
        return {{bar->text(), inside, colour}};
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(widget))
        return {{text->toPlainText().left(20), text->viewport()->geometry(), colour}};
    if (const auto *text = qobject_cast<const QTextEdit *>(widget))
        return {{text->toPlainText().left(20), text->viewport()->geometry(), colour}};
    QList<Text> tabs;
    if (const auto *bar = qobject_cast<const QTabBar *>(widget)) {
        for (int tab = 0; tab < bar->count(); ++tab)
            tabs << Text{
                bar->tabText(tab), bar->tabRect(tab).adjusted(edge, edge, -edge, -edge), Qt::black};
    }
    return tabs;
}

bool isDimmed(const QWidget *widget)
{
    return qobject_cast<QGraphicsOpacityEffect *>(widget->graphicsEffect()) || !widget->isEnabled();
}

/** What can't be read well in that window, as it shows now. */
QStringList faults(QWidget *window, int *seen)
{
    QStringList faults;
    const QImage picture = window->grab().toImage();
    for (const QWidget *widget : window->findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->window() != window || isDimmed(widget))
            continue;
        for (const Text &text : textsOf(widget)) {
            if (text.words.trimmed().isEmpty())
                continue;
            const QRect place(widget->mapTo(window, text.place.topLeft()), text.place.size());
            const double found = contrastOf(text.colour.rgb(), picture.copy(place));
            const bool isLarge = widget->font().pixelSize() >= largeText && widget->font().bold();
            ++*seen;
            if (found < (isLarge ? leastOfLargeText : leastContrast))
                faults << "%1 \"%2\": %3"_s.arg(widget->objectName(), text.words)
                              .arg(found, 0, 'f', 1);
        }
    }
    return faults;
}

} // namespace

/** Whether texts can be read in the sun: their contrast in pictures of the window. */
class ContrastTest : public DeviceTest
{
    Q_OBJECT

private:
    SkippedPauses pauses;
    std::unique_ptr<VornSettings> window;
    int seen = 0;

    /** Presses the button, and looks at the dialog that it brings. */
    QStringList faultsOfDialog(int tab, const char *button)
    {
        QStringList found;
        dialogs.plan([&](QDialog *dialog) {
            QCoreApplication::processEvents();
            found = faults(dialog, &seen);
            dialog->reject();
        });
        window->showTab(tab);
        click(visiblePage(*window), button);
        if (dialogs.take().size() != 1)
            found << "no dialog"_s;
        return found;
    }

private slots:
    void initTestCase() { setApplicationLook(); }

    void init()
    {
        DeviceTest::init();
        window = std::make_unique<VornSettings>();
        window->show();
        seen = 0;
    }

    void cleanup()
    {
        window.reset();
        takeWarnings(); // the offscreen platform grabs no keyboard for a list
        DeviceTest::cleanup();
    }

    /** The measure itself, on grounds whose contrast is known. */
    void measure_data()
    {
        QTest::addColumn<QColor>("text");
        QTest::addColumn<QColor>("ground");
        QTest::addColumn<double>("expected");
        QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
        QTest::newRow("white on the light grey of a page")
            << QColor(Qt::white) << QColor(187, 187, 187) << 1.9;
        QTest::newRow("white on the dark grey of a page")
            << QColor(Qt::white) << QColor(79, 79, 79) << 8.2;
    }

    void measure()
    {
        QFETCH(QColor, text);
        QFETCH(QColor, ground);
        QFETCH(double, expected);
        QImage picture(200, 40, QImage::Format_RGB32);
        picture.fill(ground);
        QPainter painter(&picture);
        QFont font("Arial"_s);
        font.setPixelSize(16);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(text);
        painter.drawText(picture.rect(), Qt::AlignCenter, "Caption"_s);
        painter.end();
        const double found = contrastOf(text.rgb(), picture);
        QVERIFY2(qAbs(found - expected) < 0.1, qPrintable(QString::number(found)));
    }

    void pages()
    {
        QStringList found;
        walkPages(*window, [&](tabDlg *, const QString &place) {
            for (const QString &fault : faults(window.get(), &seen))
                found << place + ", "_s + fault;
        });
        dialogs.take(); // where there are no serial lines, the Telematics page says so
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
        QVERIFY2(seen > 150, qPrintable(QString::number(seen)));
    }

    void list()
    {
        window->showTab(ledTab);
        auto *box = child<QComboBox>(visiblePage(*window), "comboBoxColor");
        box->showPopup();
        const auto *list = box->view();
        const QImage picture = list->viewport()->grab().toImage();
        for (int row = 0; row < box->count(); ++row) {
            const bool isCurrent = row == list->currentIndex().row();
            const QRect place = list->visualRect(box->model()->index(row, 0));
            const double found =
                contrastOf(isCurrent ? qRgb(0, 0, 0) : qRgb(255, 255, 255), picture.copy(place));
            QVERIFY2(found >= leastContrast, qPrintable("%1: %2"_s.arg(row).arg(found)));
        }
        box->hidePopup();
    }

    void messageBox()
    {
        QCOMPARE(faultsOfDialog(advancedTab, "buttonDefaults"), QStringList());
        QVERIFY(seen >= 3);
    }

    void fileDialog()
    {
        QCOMPARE(faultsOfDialog(aboutTab, "pushButtonSaveAs"), QStringList());
        QVERIFY(seen >= 6);
    }

    void colourDialog()
    {
        const QStringList found = faultsOfDialog(ledTab, "buttonColorpick");
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
        QVERIFY(seen >= 12);
    }
};

VORN_TEST_MAIN(ContrastTest)
#include "tst_contrast.moc"
