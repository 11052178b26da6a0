#include "tests/support/MockRtnetlink_posix.h"

#include <cerrno>
#include <cstring>
#include <linux/can/netlink.h>
#include <linux/if.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace support {

namespace {

constexpr std::uint32_t slowest = 10000; ///< bit/s that the controllers take
constexpr std::uint32_t fastest = 1000000;

template <typename T>
QByteArray bytesOf(const T &value)
{
    return {reinterpret_cast<const char *>(&value), int(sizeof value)};
}

QByteArray padded(QByteArray bytes)
{
    while (bytes.size() % 4 != 0)
        bytes.append('\0');
    return bytes;
}

QByteArray attribute(unsigned type, const QByteArray &payload)
{
    const rtattr header{
        std::uint16_t(RTA_LENGTH(std::size_t(payload.size()))), std::uint16_t(type)};
    return bytesOf(header) + padded(payload);
}

QByteArray message(std::uint16_t type, const QByteArray &payload)
{
    nlmsghdr header{};
    header.nlmsg_len = std::uint32_t(NLMSG_LENGTH(std::size_t(payload.size())));
    header.nlmsg_type = type;
    return bytesOf(header) + padded(payload);
}

/** Payload of an attribute of that type among `attributes`; empty if there is none. */
QByteArray payloadOf(const QByteArray &attributes, unsigned type)
{
    int at = 0;
    while (at + int(sizeof(rtattr)) <= attributes.size()) {
        rtattr header{};
        std::memcpy(&header, attributes.constData() + at, sizeof header);
        if (header.rta_len < sizeof header)
            break;
        if ((header.rta_type & NLA_TYPE_MASK) == type)
            return attributes.mid(at + int(sizeof header), header.rta_len - int(sizeof header));
        at += int(RTA_ALIGN(header.rta_len));
    }
    return {};
}

} // namespace

MockRtnetlink::MockRtnetlink(const QByteArray &path)
    : listener(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(),
        std::min(std::size_t(path.size()), sizeof address.sun_path - 1));
    if (::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(listener, 8) != 0)
        qFatal("%s: %s", path.constData(), std::strerror(errno));
    thread = std::thread(&MockRtnetlink::serve, this);
}

MockRtnetlink::~MockRtnetlink()
{
    ::shutdown(listener, SHUT_RDWR);
    thread.join();
    ::close(listener);
}

void MockRtnetlink::setLinks(std::vector<Link> present)
{
    const std::lock_guard lock(mutex);
    links = std::move(present);
}

MockRtnetlink::Link MockRtnetlink::link(int index)
{
    const std::lock_guard lock(mutex);
    for (const auto &one : links) {
        if (one.index == index)
            return one;
    }
    return {};
}

void MockRtnetlink::refuse(int number)
{
    const std::lock_guard lock(mutex);
    refusal = number;
}

void MockRtnetlink::lie(const QByteArray &bytes)
{
    const std::lock_guard lock(mutex);
    isLying = true;
    lies = bytes;
}

void MockRtnetlink::tellTruth()
{
    const std::lock_guard lock(mutex);
    isLying = false;
}

std::vector<std::string> MockRtnetlink::asked()
{
    const std::lock_guard lock(mutex);
    return std::exchange(requests, {});
}

void MockRtnetlink::serve()
{
    while (true) {
        const int line = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (line < 0)
            return;
        QByteArray request(4096, '\0');
        ssize_t got = 0;
        while ((got = ::recv(line, request.data(), std::size_t(request.size()), 0)) > 0)
            answer(line, request.left(int(got)));
        ::close(line);
    }
}

void MockRtnetlink::answer(int line, const QByteArray &request)
{
    QByteArray reply;
    {
        const std::lock_guard lock(mutex);
        nlmsghdr header{};
        std::memcpy(&header, request.constData(), sizeof header);
        if (header.nlmsg_type == RTM_GETLINK) {
            requests.emplace_back("dump");
            reply = dump() + message(NLMSG_DONE, bytesOf(0));
        } else {
            nlmsgerr error{};
            error.error = -change(request.mid(int(sizeof header)));
            reply = message(NLMSG_ERROR, bytesOf(error));
        }
        if (isLying)
            reply = lies;
    }
    if (!reply.isEmpty())
        static_cast<void>(::send(line, reply.constData(), std::size_t(reply.size()), MSG_NOSIGNAL));
}

QByteArray MockRtnetlink::dump() const
{
    QByteArray all;
    for (const auto &one : links) {
        ifinfomsg info{};
        info.ifi_type = one.hardwareType;
        info.ifi_index = one.index;
        info.ifi_flags = one.isUp ? unsigned(IFF_UP) : 0;
        can_bittiming timing{};
        timing.bitrate = one.bitRate;
        QByteArray kind = attribute(IFLA_INFO_KIND, QByteArray(one.kind.c_str()) + '\0');
        if (one.bitRate != 0)
            kind += attribute(IFLA_INFO_DATA, attribute(IFLA_CAN_BITTIMING, bytesOf(timing)));
        all += message(RTM_NEWLINK,
            bytesOf(info) + attribute(IFLA_IFNAME, QByteArray(one.name.c_str()) + '\0') +
                attribute(IFLA_LINKINFO, kind));
    }
    return all;
}

/** @return an error number, 0 for none */
int MockRtnetlink::change(const QByteArray &request)
{
    ifinfomsg info{};
    std::memcpy(&info, request.constData(), sizeof info);
    const auto number = " " + std::to_string(info.ifi_index);
    for (auto &one : links) {
        if (one.index != info.ifi_index)
            continue;
        const auto kind = payloadOf(request.mid(int(sizeof info)), IFLA_LINKINFO);
        const auto timing = payloadOf(payloadOf(kind, IFLA_INFO_DATA), IFLA_CAN_BITTIMING);
        can_bittiming wanted{};
        std::memcpy(
            &wanted, timing.constData(), std::min(std::size_t(timing.size()), sizeof wanted));
        if (timing.isEmpty())
            requests.push_back(((info.ifi_flags & IFF_UP) != 0 ? "up" : "down") + number);
        else
            requests.push_back(std::to_string(wanted.bitrate) + number);
        if (refusal != 0)
            return refusal;
        if (timing.isEmpty()) {
            one.isUp = (info.ifi_flags & IFF_UP) != 0;
            return 0;
        }
        if (one.isUp)
            return EBUSY;
        if (wanted.bitrate < slowest || wanted.bitrate > fastest)
            return EINVAL;
        one.bitRate = wanted.bitrate;
        return 0;
    }
    return ENODEV;
}

} // namespace support
