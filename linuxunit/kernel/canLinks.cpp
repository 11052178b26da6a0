#include "linuxunit/kernel/canLinks.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <libmnl/libmnl.h>
#include <linux/can/netlink.h>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <map>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace linuxunit {

namespace {

constexpr const char *kernelOfRoot = "/run/vornaux/rtnetlink";
constexpr std::size_t longestMessage = 65536;
constexpr suseconds_t answerWait = 90000; ///< microseconds
constexpr unsigned sequence = 1;          ///< each socket has one request at a time

/** A line to the kernel. */
class Line
{
public:
    Line()
        : descriptor(isOtherRoot() ? ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)
                                   : ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE))
    {
        if (descriptor < 0)
            throw Failure{
                ReadFailed, "The kernel's network interfaces can't be asked: " + errnoText(errno)};
        const timeval limit{0, answerWait};
        ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        ::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        isThere = !isOtherRoot() || connectToRoot();
    }
    ~Line() { ::close(descriptor); }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    /** False for a root whose kernel isn't played. */
    bool isThere;

    /** Sends a request and hands over the messages that answer it.
     *  @return the kernel's error number, 0 for none */
    int ask(const nlmsghdr *request, const std::function<void(const nlmsghdr *)> &take) const;

private:
    static bool isOtherRoot() { return rooted(kernelOfRoot) != kernelOfRoot; }
    bool connectToRoot() const
    {
        const auto path = rooted(kernelOfRoot);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path)
            return false;
        path.copy(address.sun_path, path.size());
        return ::connect(
                   descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    }

    int descriptor;
};

int Line::ask(const nlmsghdr *request, const std::function<void(const nlmsghdr *)> &take) const
{
    if (::send(descriptor, request, request->nlmsg_len, MSG_NOSIGNAL) < 0)
        return errno;
    std::vector<char> buffer(longestMessage);
    while (true) {
        const auto got = ::recv(descriptor, buffer.data(), buffer.size(), 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got < 0 ? errno : EPIPE;
        int left = int(got);
        const auto *message = reinterpret_cast<const nlmsghdr *>(buffer.data());
        // The library takes the length of a message for a signed number.
        for (; mnl_nlmsg_ok(message, left) && message->nlmsg_len <= unsigned(left);
             message = mnl_nlmsg_next(message, &left)) {
            if (message->nlmsg_type == NLMSG_DONE)
                return 0;
            if (message->nlmsg_type == NLMSG_ERROR) {
                if (mnl_nlmsg_get_payload_len(message) < sizeof(nlmsgerr))
                    return EBADMSG;
                return -static_cast<const nlmsgerr *>(mnl_nlmsg_get_payload(message))->error;
            }
            take(message);
        }
        if (left > 0)
            return EBADMSG;
    }
}

/** Attributes by their types. */
using Attributes = std::map<unsigned, const nlattr *>;

int noteAttribute(const nlattr *attribute, void *attributes)
{
    static_cast<Attributes *>(attributes)->emplace(mnl_attr_get_type(attribute), attribute);
    return MNL_CB_OK;
}

/** The one of that type; null if there is none. */
const nlattr *at(const Attributes &attributes, unsigned type)
{
    const auto found = attributes.find(type);
    return found == attributes.end() ? nullptr : found->second;
}

Attributes nested(const nlattr *outer)
{
    Attributes attributes;
    if (outer)
        mnl_attr_parse_nested(outer, &noteAttribute, &attributes);
    return attributes;
}

std::string textOf(const nlattr *attribute)
{
    if (!attribute)
        return {};
    const auto *bytes = static_cast<const char *>(mnl_attr_get_payload(attribute));
    return {bytes, ::strnlen(bytes, mnl_attr_get_payload_len(attribute))};
}

/** Adds the interface to `links` if it is a CAN one. */
void take(const nlmsghdr *message, std::vector<CanLink> &links)
{
    if (message->nlmsg_type != RTM_NEWLINK ||
        mnl_nlmsg_get_payload_len(message) < sizeof(ifinfomsg))
        return;
    const auto *info = static_cast<const ifinfomsg *>(mnl_nlmsg_get_payload(message));
    if (info->ifi_type != ARPHRD_CAN)
        return;
    CanLink link{info->ifi_index, {}, (info->ifi_flags & IFF_UP) != 0, false, 0};
    Attributes attributes;
    mnl_attr_parse(message, sizeof *info, &noteAttribute, &attributes);
    link.name = textOf(at(attributes, IFLA_IFNAME));
    const auto kind = nested(at(attributes, IFLA_LINKINFO));
    link.hasBitRate = textOf(at(kind, IFLA_INFO_KIND)) == "can";
    const auto *timing = at(nested(at(kind, IFLA_INFO_DATA)), IFLA_CAN_BITTIMING);
    if (timing && mnl_attr_get_payload_len(timing) >= sizeof(can_bittiming))
        link.bitRate = static_cast<const can_bittiming *>(mnl_attr_get_payload(timing))->bitrate;
    if (!link.name.empty())
        links.push_back(link);
}

/** A request about one interface, or all. */
struct Request {
    Request(std::uint16_t type, int flags, int index)
        : header(mnl_nlmsg_put_header(bytes))
    {
        header->nlmsg_type = type;
        header->nlmsg_flags = std::uint16_t(NLM_F_REQUEST | flags);
        header->nlmsg_seq = sequence;
        info = static_cast<ifinfomsg *>(mnl_nlmsg_put_extra_header(header, sizeof *info));
        info->ifi_family = AF_UNSPEC;
        info->ifi_index = index;
    }

    alignas(nlmsghdr) char bytes[1024]{}; // NOLINT(modernize-avoid-c-arrays): the library's way
    nlmsghdr *header;
    ifinfomsg *info;
};

/** @return the kernel's error number, 0 for none */
int setUp(const Line &line, const CanLink &link, bool up)
{
    const Request request(RTM_NEWLINK, NLM_F_ACK, link.index);
    request.info->ifi_change = IFF_UP;
    request.info->ifi_flags = up ? IFF_UP : 0;
    return line.ask(request.header, [](const nlmsghdr * /*unused*/) {});
}

int setTiming(const Line &line, const CanLink &link, std::uint32_t bitRate)
{
    const Request request(RTM_NEWLINK, NLM_F_ACK, link.index);
    auto *outer = mnl_attr_nest_start(request.header, IFLA_LINKINFO);
    mnl_attr_put_strz(request.header, IFLA_INFO_KIND, "can");
    auto *data = mnl_attr_nest_start(request.header, IFLA_INFO_DATA);
    can_bittiming timing{};
    timing.bitrate = bitRate; // the kernel works the rest out
    mnl_attr_put(request.header, IFLA_CAN_BITTIMING, sizeof timing, &timing);
    mnl_attr_nest_end(request.header, data);
    mnl_attr_nest_end(request.header, outer);
    return line.ask(request.header, [](const nlmsghdr * /*unused*/) {});
}

void throwFor(int number, const CanLink &link)
{
    switch (number) {
    case 0:
        return;
    case EPERM:
    case EACCES:
        throw Failure{NoPermission, "No permission to set the bit rate of " + link.name +
                                        "; it takes the capability CAP_NET_ADMIN"};
    case EINVAL:
    case ERANGE:
    case EDOM:
        throw Failure{ValueOutOfRange, {}};
    case ENODEV:
    case EAGAIN:
        throw Failure{NotAvailable, {}};
    case EOPNOTSUPP:
        throw Failure{NotSupported, {}};
    default:
        throw Failure{
            WriteFailed, "Setting the bit rate of " + link.name + " failed: " + errnoText(number)};
    }
}

} // namespace

std::vector<CanLink> canLinks()
{
    std::vector<CanLink> links;
    const Line line;
    if (!line.isThere)
        return links;
    const Request request(RTM_GETLINK, NLM_F_DUMP, 0);
    const int number =
        line.ask(request.header, [&](const nlmsghdr *message) { take(message, links); });
    if (number == EAGAIN)
        throw Failure{NotAvailable, {}};
    if (number != 0)
        throw Failure{
            ReadFailed, "The kernel doesn't tell of its network interfaces: " + errnoText(number)};
    std::sort(links.begin(), links.end(), [](const CanLink &one, const CanLink &other) {
        return ::strverscmp(one.name.c_str(), other.name.c_str()) < 0;
    });
    return links;
}

void setBitRate(const CanLink &link, std::uint32_t bitRate)
{
    const Line line;
    if (!line.isThere)
        throw Failure{NotAvailable, {}};
    if (link.isUp)
        throwFor(setUp(line, link, false), link);
    const int number = setTiming(line, link, bitRate);
    const int upNumber = link.isUp ? setUp(line, link, true) : 0;
    throwFor(number, link);
    throwFor(upNumber, link);
}

} // namespace linuxunit
