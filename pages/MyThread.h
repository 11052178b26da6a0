#pragma once

#include "frame/VornAux2.h"

#include <QThread>

#include <atomic>
#include <cstdint>

/** The battery monitor goes on as long as this is not 0. It sets the flag itself on starting. */
extern std::atomic<std::uint8_t> batteryKeepRunning;

/**
 * Follows the external battery from a thread and a device handle of its own. Ends at once if there
 * is no battery, else when batteryKeepRunning is cleared, within one step of 100 ms and the device
 * calls of the pass. Its signals are the only way to the widgets.
 */
class MyThread : public QThread
{
    Q_OBJECT

public:
    using QThread::QThread;

signals:
    void newLevel(int percent);
    void newCharge(QString text);
    void newLabel(QString text);

protected:
    void run() override;
};

/** What the Battery tab says of a BatteryChargingStatus. */
QString chargingText(std::int32_t status);
/** What it says of a BatteryPowerSource, or of the failure to read one. */
QString powerSourceText(DeviceCode code, std::int32_t source);
