#include "frame/window/startOnDisplay.h"

#include "platform/platform.h"

#include <QMutex>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

constexpr char scaleVariable[] = "QT_SCALE_FACTOR";
constexpr double rounding = 1e-6;

/** What Qt says while it looks for a display. */
struct Said {
    QtMsgType type;
    QByteArray category;
    QString text;
};

/** Plugins may talk from threads of their own. */
struct Notes {
    QMutex lock;
    QList<Said> said;
};

Notes &notes()
{
    static Notes all;
    return all;
}

QString whyNoDisplay()
{
    for (const Said &one : std::as_const(notes().said)) {
        QString text = one.text.simplified();
        if (text == QLatin1String("could not connect to display"))
            break;
        if (one.category.startsWith("qt.qpa"))
            return text;
    }
    return QStringLiteral("neither DISPLAY nor WAYLAND_DISPLAY leads to one");
}

// Qt would abort, as if the program were broken. Nothing is open yet that has to be closed.
[[noreturn]] void endWithoutDisplay()
{
    platform::printErrorLine(
        QStringLiteral("VornSettings: there is no display to show the window on: ") +
        whyNoDisplay());
    std::_Exit(EXIT_FAILURE);
}

void keepUntilStarted(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QMutexLocker locker(&notes().lock);
    if (type == QtFatalMsg)
        endWithoutDisplay();
    notes().said << Said{type, QByteArray(context.category), text};
}

void start(std::optional<QApplication> &application, int &argc, char **argv)
{
    const QtMessageHandler handler = qInstallMessageHandler(keepUntilStarted);
    application.emplace(argc, argv);
    qInstallMessageHandler(handler);
    const QMutexLocker locker(&notes().lock);
    if (!QGuiApplication::primaryScreen())
        endWithoutDisplay();
    for (const Said &one : std::as_const(notes().said)) {
        const QMessageLogContext context(nullptr, 0, nullptr, one.category.constData());
        handler(one.type, context, one.text);
    }
    notes().said.clear();
}

QString twoDigits(double scale)
{
    return QString::number(scale, 'g', 3);
}

/** The scale that Qt has now, by all of its variables, the desktop and the compositor. */
double presentScale()
{
    return QGuiApplication::primaryScreen()->devicePixelRatio();
}

double greatestScale(QSize window)
{
    const QSizeF room = QGuiApplication::primaryScreen()->availableSize();
    return presentScale() *
           std::min(room.width() / window.width(), room.height() / window.height());
}

/** The one variable that multiplies what all others come to. */
void multiplyScale(double factor)
{
    bool isNumber = false;
    const double present = qEnvironmentVariable(scaleVariable).toDouble(&isNumber);
    qputenv(scaleVariable,
        QByteArray::number((isNumber && present > 0 ? present : 1) * factor, 'g', 10));
}

} // namespace

double scaleThatFits(double asked, double room)
{
    constexpr double step = 0.25; // finer ones would only blur what is drawn one pixel wide
    if (asked > room + rounding)
        asked = std::floor(room / step + rounding) * step;
    return std::max(1.0, asked); // Qt doesn't paint below
}

void startOnDisplay(std::optional<QApplication> &application, int &argc, char **argv, QSize window)
{
    const std::vector<char *> arguments(argv, argv + argc);
    start(application, argc, argv);
    const double asked = presentScale();
    const double room = greatestScale(window);
    const double scale = scaleThatFits(asked, room);
    if (std::abs(scale - asked) < rounding)
        return;
    platform::printErrorLine(
        QStringLiteral("VornSettings: scale factor %1 becomes %2: %3")
            .arg(twoDigits(asked), twoDigits(scale),
                asked < 1 ? QStringLiteral("the window can't be drawn smaller than it is")
                          : QStringLiteral("the window would not fit the screen")));
    multiplyScale(scale / asked);
    // The factor is read when the object is made, which wants all arguments again.
    application.reset();
    std::copy(arguments.begin(), arguments.end(), argv);
    argc = int(arguments.size());
    start(application, argc, argv);
}
