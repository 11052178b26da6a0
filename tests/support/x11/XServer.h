#pragma once

#include <QImage>
#include <QProcess>
#include <QSize>
#include <QString>

#include <cstdint>

struct xcb_connection_t;

namespace support {

/**
 * An X server of the test's own, without a screen to see, at a display number that it chooses
 * itself. It ends with this object, and so does its window manager.
 */
class XServer
{
public:
    explicit XServer(QSize screen = QSize(1400, 1000));
    ~XServer();
    XServer(const XServer &) = delete;
    XServer &operator=(const XServer &) = delete;

    /** False if it didn't start. */
    bool isRunning() const { return connection != nullptr; }
    /** Value for DISPLAY, ":7". */
    QString display() const { return name; }

    /** Starts a window manager, which gives the keys to each new window, and back when it goes. */
    bool manage(const QString &program = QStringLiteral("openbox"));

    /** Runs xdotool with these arguments; its output, trimmed, or "failed: ...". */
    QString tool(const QStringList &arguments) const;

    /** Whether that window has the keys. */
    bool hasFocus(std::uint32_t window) const;
    /** Gives the keys to that window; false while it can't have them. */
    bool focus(std::uint32_t window) const;
    /** What a window manager's close button sends. */
    void requestClose(std::uint32_t window) const;
    /** Least and greatest size that the window lets a window manager give it; null if none. */
    std::pair<QSize, QSize> sizeLimits(std::uint32_t window) const;
    /** The window as it is on the screen; of what isn't on the screen there is no picture. */
    QImage picture(std::uint32_t window) const;
    /** Where the window is on the screen, without its frame. */
    QRect placeOf(std::uint32_t window) const;
    /** All of the screen. */
    QImage screenPicture() const;

private:
    std::uint32_t atom(const char *text) const;
    std::uint32_t root() const;

    QProcess server;
    QProcess manager;
    QString name;
    xcb_connection_t *connection = nullptr;
};

} // namespace support
