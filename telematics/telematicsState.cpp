#include "telematics/telematicsState.h"

#include "platform/platform.h"

std::atomic<SerialPort *> gpsPort{nullptr};
SerialPort *gsmPort = nullptr;
std::atomic<std::uint8_t> gpsKeepRunning{0};
bool gpsDataMode = false;

namespace {

constexpr int closing = -1;
std::atomic<int> shares{0}; // in gpsPort, or closing

} // namespace

GpsLineShare::GpsLineShare()
{
    int count = shares;
    do {
        while (count == closing) {
            platform::pause(1);
            count = shares;
        }
    } while (!shares.compare_exchange_weak(count, count + 1));
}

void GpsLineShare::giveBack()
{
    if (!held.exchange(false))
        return;
    int count = shares;
    while (!shares.compare_exchange_weak(count, count == 1 ? closing : count - 1)) {
    }
    if (count > 1)
        return;
    serialClose(gpsPort);
    gpsPort = nullptr;
    shares = 0;
}
