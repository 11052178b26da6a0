#ifndef QTVERSIONS_H
#define QTVERSIONS_H

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QMouseEvent>
#include <QtGlobal>

#include <memory>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#    include <QTextCodec>
#else
#    include <QStringDecoder>
#endif

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

/** Where on the screen, in the program's own pixels. */
inline QPointF screenPositionOf(const QMouseEvent &event)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return event.screenPos();
#else
    return event.globalPosition();
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

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
using TextDecoder = QTextDecoder;
#else
using TextDecoder = QStringDecoder;
#endif

/** For text that begins with a byte-order mark of UTF-8, UTF-16 or UTF-32; null for other text.
 *  @param beginning of the text, at least four bytes if there are so many */
inline std::unique_ptr<TextDecoder> decoderByMark(const QByteArray &beginning)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QTextCodec *codec = QTextCodec::codecForUtfText(beginning, nullptr);
    return codec ? std::make_unique<TextDecoder>(codec) : nullptr;
#else
    const auto encoding = QStringConverter::encodingForData(beginning);
    return encoding ? std::make_unique<TextDecoder>(*encoding) : nullptr;
#endif
}

/** The next piece of a text, which may be cut anywhere, without its mark. */
inline QString decode(TextDecoder &decoder, const QByteArray &piece)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return decoder.toUnicode(piece);
#else
    return decoder.decode(piece);
#endif
}

} // namespace qtVersions

#endif // QTVERSIONS_H
