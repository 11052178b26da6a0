#ifndef QTVERSIONS_H
#define QTVERSIONS_H

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QMouseEvent>

/** What Qt 5.15 and Qt 6 call differently, so that nobody else asks for the version. */
namespace qtVersions {

/** Scales the window with the screen; Qt 6 does so unasked. Before the application object is made.
 *  Qt 5 takes the size that X servers tell, 100 dpi as often as not, for a scale of 1.04: such
 *  fractions would only blur. */
inline void scaleWithScreen()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
#endif
}

/** Where in the widget, in its own pixels. */
inline QPointF positionOf(const QMouseEvent &event)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return event.localPos();
#else
    return event.position();
#endif
}

/** A local time as Qt::TextDate is in Qt 6: in English, whatever the user's language is. */
inline QString textDate(const QDateTime &time)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QLocale::c().toString(time, QStringLiteral("ddd MMM d HH:mm:ss yyyy"));
#else
    return time.toString(Qt::TextDate);
#endif
}

} // namespace qtVersions

#endif // QTVERSIONS_H
