#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace virtualunit::lines {

/**
 * The far end of a serial line: a pseudo-terminal with the pace of its speed, reachable under a
 * stable name. A near end that is set to another speed gets garbage and sends garbage. Nobody at
 * the near end: what is sent is lost, as on a wire. Failures of the system are thrown as
 * std::system_error.
 */
class VirtualLine
{
public:
    /** @param speed in baud; 8 data bits, no parity, 1 stop bit */
    explicit VirtualLine(int speed);
    ~VirtualLine();
    VirtualLine(const VirtualLine &) = delete;
    VirtualLine &operator=(const VirtualLine &) = delete;

    /** Makes the line reachable there by a symbolic link, in place of the name that it had; an
     * empty path takes the name away. Throws if something else than a link is there. */
    void setName(const std::filesystem::path &name);

    /** What has come in. */
    std::string receive();
    /** Queues bytes to be sent. */
    void send(std::string_view bytes);
    /** Bytes that are still to be sent. */
    std::size_t waiting() const { return queue.size(); }
    /** Sends what the speed lets through in that many seconds. */
    void transmit(double seconds);
    /** The power is gone: what waits is not sent. */
    void silence() { queue.clear(); }

private:
    void create();
    void renew();
    void makeLink() const;
    bool held();
    bool rightSpeed() const;
    bool tidyUp();

    const int baud;
    int handle = -1;
    std::string path;
    std::filesystem::path link;
    bool wasHeld = false;
    std::string queue;
    double allowance = 0; // bytes
};

} // namespace virtualunit::lines
