#include "tests/support/x11/XServer.h"

#include <QFileInfo>
#include <QSize>
#include <QThread>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace support {

namespace {

constexpr int startTime = 30'000; // milliseconds

struct Free {
    void operator()(void *reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

} // namespace

XServer::XServer(QSize screen)
{
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(QStringLiteral("Xvfb"),
        {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
            QStringLiteral("0"),
            QStringLiteral("%1x%2x24").arg(screen.width()).arg(screen.height()),
            QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    // The server writes its number as soon as it takes connections.
    while (!server.canReadLine()) {
        if (!server.waitForReadyRead(startTime))
            return;
    }
    name = QLatin1Char(':') + QString::fromLatin1(server.readLine().trimmed());
    connection = xcb_connect(name.toLatin1().constData(), nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        connection = nullptr;
    }
}

XServer::~XServer()
{
    if (connection)
        xcb_disconnect(connection);
    manager.kill();
    manager.waitForFinished();
    server.terminate();
    if (!server.waitForFinished(startTime))
        server.kill();
    server.waitForFinished();
}

bool XServer::manage(const QString &program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), name);
    manager.setProcessEnvironment(environment);
    manager.setStandardErrorFile(QProcess::nullDevice());
    const bool isOpenbox = program == QLatin1String("openbox");
    manager.start(program, isOpenbox ? QStringList{QStringLiteral("--sm-disable")} : QStringList());
    // A window manager says so at the root window when it has begun.
    for (int wait = 0; wait < startTime; wait += 50) {
        const auto cookie = xcb_get_property(
            connection, 0, root(), atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1);
        const Owned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection, cookie, nullptr));
        if (reply && xcb_get_property_value_length(reply.get()) != 0)
            return true;
        QThread::msleep(50);
    }
    return false;
}

QString XServer::tool(const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), name);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral("xdotool"), arguments);
    if (!process.waitForFinished(startTime) || process.exitCode() != 0)
        return QStringLiteral("failed: xdotool ") + arguments.join(QLatin1Char(' '));
    return QString::fromLatin1(process.readAllStandardOutput().trimmed());
}

std::uint32_t XServer::atom(const char *text) const
{
    const auto cookie = xcb_intern_atom(connection, 0, std::uint16_t(std::strlen(text)), text);
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

std::uint32_t XServer::root() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

bool XServer::hasFocus(std::uint32_t window) const
{
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return reply && reply->focus == window;
}

bool XServer::focus(std::uint32_t window) const
{
    const auto cookie =
        xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    const Owned<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    return !error;
}

void XServer::requestClose(std::uint32_t window) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    event.data.data32[1] = XCB_CURRENT_TIME;
    char bytes[sizeof event];
    std::memcpy(bytes, &event, sizeof event);
    xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, bytes);
    xcb_flush(connection);
}

std::pair<QSize, QSize> XServer::sizeLimits(std::uint32_t window) const
{
    // Of the eighteen numbers, 5 and 6 are the least size, 7 and 8 the greatest; bits 4 and 5 of
    // the first say whether they hold.
    constexpr std::uint32_t count = 18;
    const auto cookie = xcb_get_property(
        connection, 0, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 0, count);
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < int(count * sizeof(std::int32_t)))
        return {};
    std::int32_t numbers[count];
    std::memcpy(numbers, xcb_get_property_value(reply.get()), sizeof numbers);
    QSize least;
    QSize greatest;
    if (numbers[0] & 1 << 4)
        least = QSize(numbers[5], numbers[6]);
    if (numbers[0] & 1 << 5)
        greatest = QSize(numbers[7], numbers[8]);
    return {least, greatest};
}

QImage XServer::picture(std::uint32_t window) const
{
    const Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!geometry)
        return {};
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
        geometry->width, geometry->height, ~0U);
    const Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    return QImage(xcb_get_image_data(reply.get()), geometry->width, geometry->height,
        geometry->width * 4, QImage::Format_RGB32)
        .copy();
}

QRect XServer::placeOf(std::uint32_t window) const
{
    const Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    const Owned<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
        connection, xcb_translate_coordinates(connection, window, root(), 0, 0), nullptr));
    if (!geometry || !corner)
        return {};
    return {corner->dst_x, corner->dst_y, geometry->width, geometry->height};
}

QImage XServer::screenPicture() const
{
    return picture(root());
}

} // namespace support
