/* Pictures of the real window on the virtual unit, for the documents, for whoever changes the look,
 * and for tests. Each run gives the same pictures, on any desktop and without one. */

#include "frame/WaitNotice.h"
#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "frame/window/startOnDisplay.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/pages.h"
#include "virtualunit/VirtualUnit.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCommandLineParser>
#include <QDir>
#include <QPainter>
#include <QScreen>
#include <QSlider>
#include <QTabWidget>
#include <QTemporaryFile>

#include <cstdio>

using namespace support;

namespace {

constexpr std::int64_t unitTime = 1'773'000'000'000; // a Sunday evening in March 2026
constexpr int settleTime = 700;                      // milliseconds, longer than any refresh
constexpr int deviceFault = 5;

/** Ends the program with one line if the virtual unit refuses. */
void require(const virtualunit::Error &error)
{
    if (error.empty())
        return;
    std::fprintf(stderr, "vornshots: %s\n", error.c_str());
    std::exit(EXIT_FAILURE);
}

void useProfile(const std::string &profile)
{
    require(virtualunit::loadProfile(profile));
    require(virtualunit::setClock(unitTime));
}

/** "GSM/GPRS" gives "gsm-gprs". */
QString fileWord(const QString &caption)
{
    static const QRegularExpression others("[^a-z0-9]+"_s);
    return caption.toLower().replace(others, "-"_s);
}

/** What is taken. */
struct Order {
    QString folder;
    QString page;  ///< name of its pictures, all pages if empty
    QString state; ///< "focus", "list", "box", "busy", or empty
    QSize screen;  ///< pictures of all of it, in pixels; of the window alone if empty
    QString scale; ///< QT_SCALE_FACTOR, empty to leave it
};

constexpr char usage[] =
    "usage: vornshots [--page NAME] [--state focus|list|box|busy] [--screen WxH] [--scale F] DIR\n";

class Camera
{
public:
    explicit Camera(Order what)
        : order(std::move(what))
        , folder(order.folder)
    {}

    void take(const QPixmap &picture, const QString &name)
    {
        const QString file = folder.filePath(name + ".png"_s);
        if (picture.save(file))
            return;
        std::fprintf(stderr, "vornshots: cannot write %s\n", qPrintable(file));
        failed = true;
    }

    void takePage(VornSettings &window, int index)
    {
        const QString name = QLatin1String(support::pageAt(index).shot);
        if (!order.page.isEmpty() && order.page != name)
            return;
        window.showTab(index);
        auto *page = visiblePage(window);
        auto *tabs = page ? page->findChild<QTabWidget *>() : nullptr;
        if (!tabs)
            return takeSettled(window, name);
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            takeSettled(window, name + QLatin1Char('-') + fileWord(tabs->tabText(tab)));
        }
        tabs->setCurrentIndex(0);
    }

    /** The display page with the error box that a failing slider brings up. */
    void takeError(VornSettings &window, support::Dialogs &dialogs)
    {
        require(virtualunit::setFault("Backlight_setIntensity", deviceFault));
        window.showTab(displayTab);
        QTest::qWait(settleTime);
        auto *level = visiblePage(window)->findChild<QSlider *>();
        dialogs.plan([&](QDialog *box) {
            box->move(window.geometry().center() - box->rect().center());
            take(seen(window, box), "error"_s);
            box->reject();
        });
        if (level)
            level->triggerAction(QSlider::SliderPageStepSub);
        require(virtualunit::clearFaults());
    }

    bool failed = false;

private:
    static tabDlg *visiblePage(const VornSettings &window)
    {
        for (auto *page : window.findChildren<tabDlg *>()) {
            if (page->isVisible())
                return page;
        }
        return nullptr;
    }

    /** The window, on its screen if one was asked for, and what stands in front of it. */
    QPixmap seen(VornSettings &window, QWidget *front = nullptr) const
    {
        const QPixmap whole = window.grab();
        QPixmap picture = whole;
        QPoint origin = window.geometry().topLeft();
        if (!order.screen.isEmpty()) {
            const QRect screen = window.screen()->geometry();
            picture = QPixmap(order.screen);
            picture.setDevicePixelRatio(window.devicePixelRatio());
            picture.fill(Qt::black);
            origin = screen.topLeft();
        }
        QPainter painter(&picture);
        painter.drawPixmap(window.geometry().topLeft() - origin, whole);
        if (front) {
            const QRect place(front->geometry().topLeft() - origin, front->size());
            painter.drawPixmap(place.topLeft(), front->grab());
            painter.setPen(Qt::black);
            painter.drawRect(place);
        }
        return picture;
    }

    void takeSettled(VornSettings &window, const QString &name)
    {
        QTest::qWait(settleTime);
        if (order.state.isEmpty())
            take(seen(window), name);
        else if (order.state == "focus"_s)
            takeFocus(window, name + "-focus"_s);
        else if (order.state == "list"_s)
            takeLists(window, name + "-list"_s);
        else if (order.state == "busy"_s)
            takeBusy(window, name + "-busy"_s);
    }

    /** With the focus on each of the page's controls that a key reaches. */
    void takeFocus(VornSettings &window, const QString &name)
    {
        const tabDlg *page = visiblePage(window);
        window.activateWindow(); // which a box that was there has left to be done
        if (!QTest::qWaitForWindowActive(&window)) {
            std::fprintf(stderr, "vornshots: the window of %s isn't active\n", qPrintable(name));
            failed = true;
        }
        for (auto *control : page->findChildren<QWidget *>()) {
            if (!(control->focusPolicy() & Qt::TabFocus) || !control->isVisible() ||
                !control->isEnabled() || control->objectName().startsWith("qt_"_s))
                continue;
            control->setFocus(Qt::TabFocusReason);
            take(seen(window), name + QLatin1Char('-') + control->objectName());
        }
    }

    /** Each drop-down list of the page, open. */
    void takeLists(VornSettings &window, const QString &name)
    {
        for (auto *box : visiblePage(window)->findChildren<QComboBox *>()) {
            if (!box->isVisible() || !box->isEnabled())
                continue;
            box->showPopup();
            QTest::qWait(settleTime);
            take(seen(window, box->view()->window()), name + QLatin1Char('-') + box->objectName());
            box->hidePopup();
        }
    }

    void takeBusy(VornSettings &window, const QString &name)
    {
        const WaitNotice notice(visiblePage(window), settleTime);
        take(seen(window), name);
    }

    Order order;
    QDir folder;
};

void takeAll(Camera &camera, const Order &order)
{
    support::Dialogs dialogs;
    useProfile("full");
    const bool all = order.page.isEmpty() && order.state.isEmpty() && order.screen.isEmpty();
    {
        VornSettings window;
        showOnScreen(window);
        for (int index = menuTab; index < tabCount && order.state != "box"_s; ++index)
            camera.takePage(window, index);
        if (all || order.state == "box"_s)
            camera.takeError(window, dialogs);
    }
    if (!all)
        return;
    for (const std::string &profile : virtualunit::profiles()) {
        useProfile(profile);
        VornSettings window;
        showOnScreen(window);
        camera.take(window.grab(), "menu-"_s + QString::fromStdString(profile));
    }
}

/** Nothing if the arguments can't be understood. */
std::optional<Order> orderOf(const QStringList &arguments)
{
    static const QStringList states{QString(), "focus"_s, "list"_s, "box"_s, "busy"_s};
    static const QRegularExpression size("^([1-9]\\d{2,3})x([1-9]\\d{2,3})$"_s);
    QCommandLineParser parser;
    for (const char *name : {"page", "state", "screen", "scale"})
        parser.addOption({QString::fromLatin1(name), QString(), QString::fromLatin1(name)});
    if (!parser.parse(arguments) || parser.positionalArguments().size() != 1)
        return std::nullopt;
    Order order{parser.positionalArguments().constFirst(), parser.value("page"_s),
        parser.value("state"_s), {}, parser.value("scale"_s)};
    const QString screen = parser.value("screen"_s);
    const auto match = size.match(screen);
    if (match.hasMatch())
        order.screen = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    bool isNumber = order.scale.isEmpty();
    if (!isNumber)
        order.scale.toDouble(&isNumber);
    if (!isNumber || match.hasMatch() == screen.isEmpty() || !states.contains(order.state))
        return std::nullopt;
    return order;
}

/** Writes what the offscreen platform reads about its screen; Qt 5 has one screen alone. */
void makeScreen(QTemporaryFile &file, QSize size)
{
    const QString text = "{\"screens\":[{\"name\":\"screen\",\"x\":0,\"y\":0,"
                         "\"width\":%1,\"height\":%2,\"logicalDpi\":96,"
                         "\"logicalBaseDpi\":96,\"dpr\":1}]}"_s.arg(size.width())
                             .arg(size.height());
    if (!file.open() || file.write(text.toUtf8()) < 0 || !file.flush())
        require("cannot write what the screen is like");
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(file.fileName()));
}

} // namespace

int main(int argc, char *argv[])
{
    support::prepareEnvironment();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const auto order = orderOf(arguments);
    if (!order) {
        std::fputs(usage, stderr);
        return 2;
    }
    QTemporaryFile screen;
    if (!order->screen.isEmpty())
        makeScreen(screen, order->screen);
    if (!order->scale.isEmpty())
        qputenv("QT_SCALE_FACTOR", order->scale.toLatin1());
    int count = 1;
    std::optional<QApplication> application;
    startOnDisplay(application, count, argv, VornSettings::wholeSize);
    if (!QDir().mkpath(order->folder)) {
        std::fprintf(stderr, "vornshots: cannot make %s\n", qPrintable(order->folder));
        return EXIT_FAILURE;
    }
    setApplicationLook();
    QApplication::setCursorFlashTime(0); // else it is a matter of luck whether a field shows one
    require(virtualunit::open(":memory:"));
    Camera camera(*order);
    takeAll(camera, *order);
    return camera.failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
