#pragma once

#include "frame/VornAux2.h"

#include <QThread>

#include <atomic>
#include <cstdint>

/** Battery monitors go on as long as this is not 0. Each sets the flag itself on starting. */
extern std::atomic<std::uint8_t> batteryKeepRunning;

/**
 * Follows the external battery from a thread and a device handle of its own. Ends at once if there
 * is no battery, else when batteryKeepRunning is cleared or requestInterruption() called, within
 * one step of 100 ms and the device calls of the pass. Its signals are the only way to the widgets.
 */
class MyThread : public QThread
{
    Q_OBJECT

public:
    using QThread::QThread;

signals:
    void newLevel(int percent);   ///< 0 to 100, and 0 for a failed reading
    void newCharge(QString text); ///< chargingText()
    void newLabel(QString text);  ///< powerSourceText()

protected:
    void run() override;
};

/** What the Battery tab says of a BatteryChargingStatus. */
QString chargingText(std::int32_t status);
/** What it says of a BatteryPowerSource, or of the failure to read one. */
QString powerSourceText(DeviceCode code, std::int32_t source);
