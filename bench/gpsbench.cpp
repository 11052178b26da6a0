#include "telematics/MyGPSThread.h"
#include "telematics/serialPort.h"
#include "telematics/telematicsState.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

/**
 * How many lines a second of the recording that the argument names pass through a bare read loop on
 * a pseudo-terminal, through the parsing functions alone and through the GPS thread on a
 * pseudo-terminal. A line of output is a name and that number.
 */
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t chunkSize = 512;
constexpr double longEnough = 1; // second

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/** Sends the recording over and over, for as long as it lives and as fast as it is read. */
class Sender
{
public:
    explicit Sender(const std::string &recording)
        : handle(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK))
    {
        termios state{};
        if (handle < 0 || ::grantpt(handle) != 0 || ::unlockpt(handle) != 0 ||
            ::tcgetattr(handle, &state) != 0)
            std::exit(1);
        ::cfmakeraw(&state);
        ::tcsetattr(handle, TCSANOW, &state);
        path = ::ptsname(handle);
        worker = std::thread([this, &recording] { send(recording); });
    }
    ~Sender()
    {
        over = true;
        worker.join();
        ::close(handle);
    }
    Sender(const Sender &) = delete;
    Sender &operator=(const Sender &) = delete;

    const char *name() const { return path.c_str(); }

private:
    void send(const std::string &recording) const
    {
        for (std::size_t sent = 0; !over;) {
            const auto taken = ::write(handle, recording.data() + sent, recording.size() - sent);
            if (taken > 0) {
                sent = (sent + std::size_t(taken)) % recording.size();
            } else {
                pollfd line{handle, POLLOUT, 0};
                ::poll(&line, 1, 10);
            }
        }
    }

    int handle;
    std::string path;
    std::atomic<bool> over{false};
    std::thread worker;
};

/** Bytes a second of a loop that does nothing but read. */
double bareLoop(const std::string &recording)
{
    const Sender sender(recording);
    const int handle = ::open(sender.name(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
    std::array<char, chunkSize> buffer{};
    std::size_t count = 0;
    const auto start = Clock::now();
    double seconds = 0;
    for (; seconds < longEnough; seconds = secondsSince(start)) {
        for (int round = 0; round < 100; ++round) {
            const auto got = ::read(handle, buffer.data(), buffer.size());
            count += got > 0 ? std::size_t(got) : 0U;
        }
    }
    ::close(handle);
    return double(count) / seconds;
}

double parsing(const std::string &recording)
{
    GpsFields fields;
    std::size_t count = 0;
    std::size_t texts = 0;
    const auto start = Clock::now();
    double seconds = 0;
    for (; seconds < longEnough; seconds = secondsSince(start)) {
        for (std::size_t at = 0; at < recording.size(); at += chunkSize) {
            GpsLines lines(std::string_view(recording).substr(at, chunkSize));
            while (!lines.atEnd() && !lines.stuck()) {
                const GpsTexts shown = readGpsLine(lines.next(), fields);
                texts += shown.speed ? 1U : 0U;
            }
        }
        count += recording.size();
    }
    if (texts == 0)
        std::exit(1); // the recording is none
    return double(count) / seconds;
}

/** Bytes a second of the GPS thread, which pauses after each chunk. */
double reader(const std::string &recording)
{
    const Sender sender(recording);
    gpsPort = serialOpen(sender.name());
    if (serialConfigure(gpsPort, SERIAL_9600, SERIAL_8_BITS, SERIAL_NO_PARITY, SERIAL_1_STOP_BIT) !=
        SERIAL_OK)
        std::exit(1);
    MyGPSThread thread;
    std::atomic<std::size_t> chunks{0};
    QObject::connect(
        &thread, &MyGPSThread::newText, &thread, [&chunks] { ++chunks; }, Qt::DirectConnection);
    thread.start();
    const auto start = Clock::now();
    std::this_thread::sleep_for(std::chrono::duration<double>(longEnough));
    const double rate = double(chunks * chunkSize) / secondsSince(start);
    gpsKeepRunning = 0;
    thread.wait();
    return rate;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2)
        return 1;
    std::ifstream file(argv[1], std::ios::binary);
    const std::string recording{std::istreambuf_iterator<char>(file), {}};
    const auto lineCount = double(std::count(recording.begin(), recording.end(), '\n'));
    if (lineCount == 0)
        return 1;
    const double lineSize = double(recording.size()) / lineCount;
    std::array<double, 3> bare{};
    std::array<double, 3> parsed{};
    for (std::size_t round = 0; round < bare.size(); ++round) {
        bare[round] = bareLoop(recording);
        parsed[round] = parsing(recording);
    }
    std::sort(bare.begin(), bare.end());
    std::sort(parsed.begin(), parsed.end());
    std::printf("bare %.0f\n", bare[1] / lineSize);
    std::printf("parsing %.0f\n", parsed[1] / lineSize);
    std::printf("reader %.0f\n", reader(recording) / lineSize);
    std::printf("wire %.2f\n", 960 / lineSize); // 9600 baud, ten bits for each byte
    return 0;
}
