/* Pictures of the real window on the virtual unit, for the documents and for whoever changes the
 * look: vornshots DIR. Each run gives the same pictures, on any desktop and without one. */

#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/pages.h"
#include "virtualunit/VirtualUnit.h"

#include <QDir>
#include <QPainter>
#include <QSlider>
#include <QTabWidget>

#include <cstdio>

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
    static const QRegularExpression others(QStringLiteral("[^a-z0-9]+"));
    return caption.toLower().replace(others, QStringLiteral("-"));
}

class Camera
{
public:
    explicit Camera(const QString &directory)
        : folder(directory)
    {}

    void take(const QPixmap &picture, const QString &name)
    {
        const QString file = folder.filePath(name + QStringLiteral(".png"));
        if (picture.save(file))
            return;
        std::fprintf(stderr, "vornshots: cannot write %s\n", qPrintable(file));
        failed = true;
    }

    void takePage(VornSettings &window, int index)
    {
        const QString name = QLatin1String(support::pageAt(index).shot);
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
        auto *level = visiblePage(window)->findChild<QSlider *>();
        dialogs.plan([&](QDialog *box) {
            QPixmap picture = window.grab();
            QPainter painter(&picture);
            const QPixmap front = box->grab();
            QRect place = box->rect();
            place.moveCenter(window.rect().center());
            painter.drawPixmap(place.topLeft(), front);
            painter.setPen(Qt::black);
            painter.drawRect(place);
            painter.end();
            take(picture, QStringLiteral("error"));
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

    void takeSettled(VornSettings &window, const QString &name)
    {
        QTest::qWait(settleTime);
        take(window.grab(), name);
    }

    QDir folder;
};

void takeAll(Camera &camera)
{
    support::Dialogs dialogs;
    useProfile("full");
    {
        VornSettings window;
        window.show();
        for (int index = menuTab; index < tabCount; ++index)
            camera.takePage(window, index);
        camera.takeError(window, dialogs);
    }
    for (const std::string &profile : virtualunit::profiles()) {
        useProfile(profile);
        VornSettings window;
        window.show();
        camera.take(window.grab(), QStringLiteral("menu-") + QString::fromStdString(profile));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    support::prepareEnvironment();
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: vornshots DIR\n", stderr);
        return 2;
    }
    const QString directory = QString::fromLocal8Bit(argv[1]);
    if (!QDir().mkpath(directory)) {
        std::fprintf(stderr, "vornshots: cannot make %s\n", argv[1]);
        return EXIT_FAILURE;
    }
    setApplicationLook();
    QApplication::setCursorFlashTime(0); // else it is a matter of luck whether a field shows one
    require(virtualunit::open(":memory:"));
    Camera camera(directory);
    takeAll(camera);
    return camera.failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
