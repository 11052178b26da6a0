#pragma once

#include <QByteArray>

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support {

/** Plays a kernel with network interfaces for the Linux unit: it listens on a socket in the unit's
 *  tree, answers dumps and takes bit rates only as a kernel does. */
class MockRtnetlink
{
public:
    struct Link {
        int index;
        std::string name;
        std::string kind;
        std::uint16_t hardwareType;
        bool isUp;
        std::uint32_t bitRate;
    };

    /** @param path of the socket, whose folder is there */
    explicit MockRtnetlink(const QByteArray &path);
    ~MockRtnetlink();
    MockRtnetlink(const MockRtnetlink &) = delete;
    MockRtnetlink &operator=(const MockRtnetlink &) = delete;

    void setLinks(std::vector<Link> links);
    Link link(int index);
    /** Changes are refused with that error number from now on; 0 for none. */
    void refuse(int number);
    /** Answers come as these bytes, or not at all if there are none, from now on. */
    void lie(const QByteArray &bytes);
    void tellTruth();
    /** What was asked, "dump", "down 3", "250000 3", "up 3". */
    std::vector<std::string> asked();

private:
    void serve();
    void answer(int line, const QByteArray &request);
    QByteArray dump() const;
    int change(const QByteArray &request);

    int listener;
    std::mutex mutex;
    std::vector<Link> links;
    std::vector<std::string> requests;
    int refusal = 0;
    bool isLying = false;
    QByteArray lies;
    std::thread thread;
};

} // namespace support
