/* The program's window on whatever device library the loader finds, in a bed of the Linux unit. It
 * tells or takes what each page shows, or sees to it that nothing comes to harm on a machine whose
 * files fail at every turn. */

#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "pages/tabAdvancedDlg.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PageWalk.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/WindowPresses.h"
#include "tests/support/literals.h"
#include "tests/support/pages.h"
#include "tests/support/programs/FileFaults_posix.h"
#include "tests/support/shownText.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QTimer>
#include <QVector>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string_view>

using namespace support;

namespace {

constexpr int settleTime = 700; ///< milliseconds, longer than any refresh

int findings = 0;

void complain(const QString &what)
{
    std::printf("%s\n", qPrintable(what));
    std::fflush(stdout);
    ++findings;
}

void noteWarnings(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    // The offscreen platform says the former for every window.
    if (type != QtDebugMsg && type != QtInfoMsg && !text.contains("propagateSizeHints"_s) &&
        text != "QColor::fromRgb: RGB parameters out of range"_s)
        complain("warning: "_s + text);
}

// --- what the pages show

/** What holds a value on a page, with the text there; the report's lines one by one. */
void forEachText(const QWidget *page, bool hiddenToo,
    const std::function<void(const QString &, const QString &)> &visit)
{
    static const QRegularExpression moment("^\\d{4}-\\d\\d-\\d\\d|\\d\\d:\\d\\d"_s);
    for (const auto *widget : page->findChildren<QWidget *>()) {
        if ((!hiddenToo && !widget->isVisible()) || widget->objectName().isEmpty())
            continue;
        for (const QString &line : shownText(widget).split(QLatin1Char('\n'))) {
            if (!line.isEmpty() && !moment.match(line).hasMatch())
                visit(widget->objectName(), line);
        }
    }
}

/** The menu's entries, and of each page that it offers what it shows and which boxes came. */
int tell()
{
    Dialogs dialogs;
    const SkippedPauses pauses;
    VornSettings window;
    window.show();
    for (const PageRow &row : pageRows) {
        if (row.place < 0)
            continue;
        const auto *button = child<QPushButton>(&window, row.button);
        std::printf("%s: %s\n", row.title,
            button->isEnabled() ? "offered" : qPrintable("dimmed, "_s + button->toolTip()));
        if (!button->isEnabled())
            continue;
        window.showTab(row.index);
        QTest::qWait(settleTime);
        if (row.index != aboutTab) { // the report, which is held elsewhere
            forEachText(visiblePage(window), false, [](const QString &name, const QString &line) {
                std::printf("    %s %s\n", qPrintable(name), qPrintable(line));
            });
        }
        for (const QString &text : dialogs.takeTexts())
            std::printf("    box: %s\n", qPrintable(text));
    }
    return EXIT_SUCCESS;
}

/** The buzzer's switch, by the page and what the kernel tells of it. */
int pressBuzzer()
{
    Dialogs dialogs;
    VornSettings window;
    window.show();
    for (int press = 0; press < 4; ++press) {
        window.showTab(menuTab);
        window.showTab(buzzerTab);
        auto *button = child<QPushButton>(visiblePage(window), "buttonOn");
        std::printf("%s\n", qPrintable(button->text()));
        QTest::mouseClick(button, Qt::LeftButton);
    }
    for (const QString &text : dialogs.takeTexts())
        complain("box: "_s + text);
    return findings == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int takePictures(const QString &folder)
{
    Dialogs dialogs;
    VornSettings window;
    showOnScreen(window);
    bool isTaken = QDir().mkpath(folder);
    walkPages(window, [&](tabDlg *page, const QString &place) {
        static const QRegularExpression others("[^a-z0-9]+"_s);
        QTest::qWait(settleTime);
        // What the menu doesn't offer has a stand-in without anything on it.
        if (!page->findChildren<QWidget *>().isEmpty())
            isTaken &= window.grab().save(
                folder + QLatin1Char('/') + place.toLower().replace(others, "-"_s) + ".png"_s);
    });
    return isTaken && findings == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

// --- faults

/** Some of the files fail, others after the next step. */
struct Plan {
    std::uint64_t seed = 0;
    std::atomic<std::uint64_t> step = 0;
};
Plan plan;

std::uint64_t mixed(std::uint64_t value)
{
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

std::uint64_t mixed(std::string_view text, std::uint64_t with)
{
    for (const char byte : text)
        with = mixed(with * 31 + static_cast<unsigned char>(byte));
    return mixed(with);
}

/** Only measured values may keep a reader waiting: the kernel has all else at hand. */
bool isMeasured(std::string_view path)
{
    return path.ends_with("_input") || path.ends_with("_raw") || path.ends_with("/temp");
}

FileFault kindOf(std::uint64_t number, std::string_view path)
{
    constexpr FileFault kinds[] = {FileFault::Gone, FileFault::NoRights, FileFault::ReadOnly,
        FileFault::Failing, FileFault::Busy, FileFault::Empty, FileFault::Nonsense,
        FileFault::Slow};
    const FileFault kind = kinds[number % std::size(kinds)];
    return kind == FileFault::Slow && !isMeasured(path) ? FileFault::Failing : kind;
}

FileFault plannedFault(std::string_view path)
{
    const std::uint64_t now = mixed(plan.seed * 1'000'003 + plan.step);
    switch (now % 4) {
    case 0: // all of the machine in the same way
        return kindOf(now >> 8, path);
    case 1: { // whole devices
        const auto device = mixed(path.substr(0, path.rfind('/')), now);
        return device % 3 == 0 ? kindOf(device >> 8, path) : FileFault::None;
    }
    default: { // one file here, one there
        const auto file = mixed(path, now);
        return file % 3 == 0 ? kindOf(file >> 8, path) : FileFault::None;
    }
    }
}

FileFault gone(std::string_view)
{
    return FileFault::Gone;
}

/** The machine as nobody has described it. */
FileFault withoutDescription(std::string_view path)
{
    return path.starts_with("/etc/vornaux") ? FileFault::Gone : FileFault::None;
}

// --- the sweep

using Shown = QMap<QString, QSet<QString>>; ///< numbers by page and widget

QStringList numbersIn(QString line)
{
    static const QRegularExpression number("\\d+(?:[.,]\\d+)?"_s);
    QStringList numbers;
    // Where the device has a name or a text, this is one.
    line.remove(QString::fromUtf8(nonsense.data(), int(nonsense.size())).trimmed());
    // The code of a failure is no value.
    if (line.contains("Error"_s))
        return numbers;
    for (auto match = number.globalMatch(line); match.hasNext();)
        numbers << match.next().captured();
    return numbers;
}

using Visit = std::function<void(const QString &, const QString &, const QString &)>;

/** The numbers on a page, by its title, the widget's name and, in a line of the report, what the
 *  number is said to be. */
void visitPage(const QWidget *page, bool hiddenToo, const Visit &visit)
{
    forEachText(page, hiddenToo, [&](const QString &name, const QString &line) {
        QString place = page->windowTitle() + QLatin1Char(' ') + name;
        if (const auto colon = line.indexOf(": "_s); colon >= 0)
            place += QLatin1Char(' ') + line.left(colon);
        for (const QString &number : numbersIn(line))
            visit(place, number, line);
    });
}

/** Shows every page of a new window, and each number on it.
 *  @param settled with what the display's page shows after a while */
void visitNumbers(bool settled, const Visit &visit)
{
    VornSettings window;
    window.show();
    walkPages(window, [&](const tabDlg *page, const QString &) {
        QTest::qWait(settled && page->inherits("tabBacklightDlg") ? settleTime : 1);
        visitPage(page, false, visit);
        ++plan.step;
    });
}

Visit addTo(Shown &shown)
{
    return [&](const QString &place, const QString &number, const QString &) {
        shown[place] << number;
    };
}

Shown shownNumbers()
{
    Shown shown;
    visitNumbers(true, addTo(shown));
    return shown;
}

/** What stands there without any machine: at first, and when each page has asked for its values. */
Shown numbersOfForms()
{
    Shown shown;
    {
        const VornSettings window;
        for (const auto *page : window.findChildren<tabDlg *>())
            visitPage(page, true, addTo(shown));
    }
    visitNumbers(true, addTo(shown));
    return shown;
}

/** What the machine tells that a page may show at any step. */
struct Told {
    Shown numbers;
    QMap<QString, int> counts;       ///< of its devices, by what the report calls them
    QSet<std::int64_t> temperatures; ///< degrees C of all sensors in the bed, as pages round them
};

/** "Number of CAN connections: 2" by its halves; nothing else. */
std::optional<std::pair<QString, int>> countIn(const QString &line)
{
    static const QRegularExpression count("^(Number of [^:]+): (\\d+)$"_s);
    const auto match = count.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    return std::pair(match.captured(1), match.captured(2).toInt());
}

QSet<std::int64_t> temperatures()
{
    QSet<std::int64_t> all;
    QDirIterator files(qEnvironmentVariable("UMOCKDEV_DIR") + "/sys/devices"_s,
        {"temp*_input"_s, "temp"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        const bool isBattery = file.fileName().contains("/power_supply/"_s);
        bool isNumber = false;
        const double value =
            file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toDouble(&isNumber) : 0;
        if (isNumber)
            all << std::llround(value / (isBattery ? 10 : 1000));
    }
    return all;
}

/** Adds what the machine tells at present. */
void addTold(Told &told)
{
    visitNumbers(true, [&](const QString &place, const QString &number, const QString &line) {
        told.numbers[place] << number;
        if (const auto count = countIn(line))
            told.counts[count->first] = qMax(told.counts.value(count->first), count->second);
    });
}

/** "45°C (113°F)" or "45 °C" of a sensor: which one it is depends on those that can be read. */
bool isTemperature(const QString &line, const QSet<std::int64_t> &all)
{
    static const QRegularExpression celsius(
        "(-?\\d+) ?\u00B0C(?: \\((-?\\d+(?:\\.\\d+)?)\u00B0F\\))?$"_s);
    const auto match = celsius.match(line);
    const auto degrees = match.captured(1).toLongLong();
    return match.hasMatch() && all.contains(degrees) &&
           (match.captured(2).isEmpty() ||
               match.captured(2) == QString::number(double(degrees) * 1.8 + 32));
}

/** Fewer devices of a kind than there are, some of which can't be seen; and the bar of a battery
 *  that doesn't tell its level. */
bool isLess(const QString &place, const QString &line, const QMap<QString, int> &counts)
{
    const auto count = countIn(line);
    return (count && count->second < counts.value(count->first)) ||
           (line == "0"_s && place.endsWith(" progressBar"_s));
}

struct Doubt {
    QString place;
    QString number;
    QString words; ///< of the complaint
};

/** Numbers that neither the machine has told nor the page shows by itself. */
QVector<Doubt> findInventions(const Told &machine, const Shown &form)
{
    QVector<Doubt> doubts;
    visitNumbers(false, [&](const QString &place, const QString &number, const QString &line) {
        if (!machine.numbers.value(place).contains(number) && !form.value(place).contains(number) &&
            !isTemperature(line, machine.temperatures) && !isLess(place, line, machine.counts))
            doubts.append(
                {place, number, "step %1: %2 shows %3"_s.arg(plan.step).arg(place, line)});
    });
    return doubts;
}

/** Complains, but not of what the machine shows by now: where this one is busy, a reading may have
 *  been late for the first look. */
void judge(const QVector<Doubt> &doubts)
{
    const Shown shown = doubts.isEmpty() ? Shown() : shownNumbers();
    for (const Doubt &doubt : doubts) {
        if (!shown.value(doubt.place).contains(doubt.number))
            complain(doubt.words);
    }
}

/** What a thread of the window brings may come a moment later. */
void requireBack(const Shown &machine)
{
    constexpr int patience = 10;
    QStringList missing;
    for (int round = 0; round == 0 || (!missing.isEmpty() && round < patience); ++round) {
        missing.clear();
        const Shown shown = shownNumbers();
        for (auto place = machine.begin(); place != machine.end(); ++place) {
            if (!shown.value(place.key()).contains(place.value()))
                missing << place.key();
        }
    }
    if (!missing.isEmpty())
        complain("not all came back: "_s + missing.join(", "_s));
}

void judge(Dialogs &dialogs, const QRegularExpression &others = QRegularExpression("^$"_s))
{
    for (const Dialog &dialog : dialogs.take()) {
        if (!isForeseen(dialog) && !others.match(dialog.text).hasMatch())
            complain("dialog: "_s + dialog.className + QLatin1Char(' ') + dialog.text);
    }
}

/** Each kind of firmware job, and the reset, as if somebody meant it. */
void runJobs(Dialogs &dialogs)
{
    dialogs.setDefaultAnswer([](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        if (box && box->button(QMessageBox::Yes))
            return box->button(QMessageBox::Yes)->click();
        dialog->accept();
    });
    tabAdvancedDlg page;
    page.show();
    auto *path = child<QLineEdit>(&page, "editFileName");
    for (const QString &name : {"/nowhere/a.mcs"_s, "/nowhere/a.hex"_s}) {
        path->setText(name);
        for (QPushButton *button : page.findChildren<QPushButton *>()) {
            if (button->objectName() != "buttonFile"_s)
                QTest::mouseClick(button, Qt::LeftButton);
            ++plan.step;
        }
    }
    judge(dialogs,
        QRegularExpression(
            "^This operation may cause harm to your device\\.|"
            "^Operation complete\\.|^Please use external power |failed in state|succeeded!"_s));
}

void press()
{
    VornSettings window;
    window.show();
    pressWindow(window, [](const QAbstractButton *button) {
        ++plan.step;
        return button->objectName() != "buttonFile"_s &&
               button->objectName() != "pushButtonSaveAs"_s;
    });
    QTest::mouseClick(child<QPushButton>(&window, "buttonExit"), Qt::LeftButton);
    if (window.isVisible())
        complain("the window stays"_s);
}

int sweep(std::uint64_t seed)
{
    constexpr int rounds = 3;
    plan.seed = seed;
    Dialogs dialogs;
    dialogs.setDefaultAnswer(denyOrClose);
    const SkippedPauses pauses;
    Told machine;
    machine.temperatures = temperatures();
    addTold(machine);
    const Shown described = machine.numbers;
    // The integrator may have told otherwise than the kernel alone does.
    setFileFaults(withoutDescription);
    addTold(machine);
    setFileFaults(gone);
    const Shown form = numbersOfForms();
    setFileFaults(plannedFault);
    QVector<Doubt> doubts;
    for (int round = 0; round < rounds; ++round)
        doubts += findInventions(machine, form);
    setFileFaults(nullptr);
    requireBack(described);
    judge(doubts);
    setFileFaults(plannedFault);
    press();
    judge(dialogs);
    runJobs(dialogs);
    return findings == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char *argv[])
{
    prepareEnvironment();
    QApplication application(argc, argv);
    setApplicationLook();
    QApplication::setCursorFlashTime(0);
    qInstallMessageHandler(noteWarnings);
    setFileFaults(nullptr);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == "pages"_s)
        return tell();
    if (arguments.value(1) == "buzzer"_s)
        return pressBuzzer();
    if (arguments.value(1) == "shots"_s && argc == 3)
        return takePictures(arguments[2]);
    if (arguments.value(1) == "sweep"_s && argc == 3)
        return sweep(arguments[2].toULongLong());
    std::fputs("usage: linuxwindow pages | buzzer | shots DIR | sweep SEED\n", stderr);
    return 2;
}
