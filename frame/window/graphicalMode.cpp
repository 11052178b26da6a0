#include "frame/window/graphicalMode.h"

#include "frame/qtVersions.h"
#include "frame/window/TouchStyle.h"
#include "frame/window/VornSettings.h"
#include "frame/window/startOnDisplay.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QScreen>

namespace {

constexpr int textPixels = 13;

// Every role, so that nothing of a desktop's theme remains.
QPalette lightPalette()
{
    const QColor face(208, 208, 208);
    const QColor amber(255, 194, 66);
    const QColor faint(110, 110, 110);
    QPalette palette(face, face);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
             QPalette::HighlightedText, QPalette::ToolTipText}) {
        palette.setColor(role, Qt::black);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(240, 240, 240));
    palette.setColor(QPalette::Highlight, amber);
    palette.setColor(QPalette::ToolTipBase, amber);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Link, QColor(0, 60, 160));
    palette.setColor(QPalette::LinkVisited, QColor(90, 40, 120));
    palette.setColor(QPalette::BrightText, Qt::white);
    return palette;
}

} // namespace

void setApplicationLook()
{
    QApplication::setStyle(new TouchStyle); // the application owns it
    QApplication::setPalette(lightPalette());
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(textPixels);
    QApplication::setFont(font);
}

void showOnScreen(QWidget &window)
{
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    QRect place(QPoint(), VornSettings::wholeSize.boundedTo(room.size()));
    place.moveCenter(room.center());
    if (place.size() != window.size())
        window.setFixedSize(place.size());
    window.move(place.topLeft());
    window.show();
}

int runGraphicalMode(int &argc, char **argv)
{
    qtVersions::scaleWithScreen();
    std::optional<QApplication> application;
    startOnDisplay(application, argc, argv, VornSettings::wholeSize);
    setApplicationLook();
    VornSettings window(nullptr, Qt::WindowFlags());
    const Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                  Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                                  Qt::MSWindowsFixedSizeDialogHint;
    // As long as no window system knows the window, its flags can just be put down;
    // setWindowFlags() would work the style sheet out for all widgets once more, half of the whole
    // start. A box that came while the pages were built has made the window known.
    if (window.windowHandle())
        window.setWindowFlags(flags);
    else
        window.overrideWindowFlags(flags);
    showOnScreen(window);
    return QApplication::exec();
}
