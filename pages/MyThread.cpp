#include "pages/MyThread.h"

#include "frame/DeviceHandle.h"
#include "frame/batteryTexts.h"
#include "platform/platform.h"

std::atomic<std::uint8_t> batteryKeepRunning{0};

namespace {

/** A thread whose page has gone ends by itself, though the next page's has set the flag again. */
bool keepRunning()
{
    return batteryKeepRunning.load(std::memory_order_relaxed) != 0 &&
           !QThread::currentThread()->isInterruptionRequested();
}

/** Waits so many steps of 100 ms; a stop cuts the wait short. */
void waitSteps(int steps)
{
    for (int i = 0; i < steps && keepRunning(); ++i)
        platform::pause(100);
}

} // namespace

QString chargingText(std::int32_t status)
{
    const QString line = batteryChargingLine(status);
    return line.isEmpty() ? batteryChargingLine(CHARGING_UNKNOWN) : line;
}

QString powerSourceText(DeviceCode code, std::int32_t source)
{
    return code == DEVICE_OK ? powerSourceText(source) : QStringLiteral("Power source: Unknown");
}

void MyThread::run()
{
    batteryKeepRunning.store(1, std::memory_order_relaxed);
    const DeviceHandle<Battery_create, Battery_release> battery;
    DeviceBool available = 0;
    if (Battery_isAvailable(battery, &available) != DEVICE_OK || !available)
        batteryKeepRunning.store(0, std::memory_order_relaxed);

    while (keepRunning()) {
        waitSteps(30);
        if (!keepRunning())
            break;

        std::int32_t status = CHARGING_UNKNOWN;
        auto code = Battery_getChargingStatus(battery, &status);
        emit newCharge(chargingText(code == DEVICE_OK ? status : CHARGING_UNKNOWN));

        // A stop from here on shortens the waits, but the pass is finished.
        waitSteps(10);
        std::int32_t source = POWER_EXTERNAL;
        code = Battery_getPowerSource(battery, &source);
        emit newLabel(powerSourceText(code, source));

        waitSteps(10);
        std::uint8_t percent = 0;
        code = Battery_getVoltageLevel(battery, &percent);
        emit newLevel(code == DEVICE_OK ? percent : 0);
    }
}
