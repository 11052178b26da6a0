#pragma once

#include <QString>
#include <QThread>

#include "frame/VornAux2.h"
#include "telematics/gpsParser.h"
#include "telematics/serialPort.h"
#include "telematics/telematicsState.h"

#include <atomic>
#include <cstdint>

/** What the page says of the antenna.
 *  @param code of the asking
 *  @param status as the device told it; counts only where the asking went well */
QString antennaText(DeviceCode code, std::int32_t status);

/**
 * Reads the GPS receiver's line (gpsPort) and the state of its antenna, and sends what there is to
 * show. The line is opened and configured before this is made, which takes a share in it, and is
 * given back when the thread ends: after stop(), or, when the read that waits is over, after
 * gpsKeepRunning was set to 0 or the interruption requested. It has a device handle of its own.
 * Without a usable line it goes on asking for the antenna, without pause; while this object's own
 * thread, the window's, is some hundred labels behind, no further one is sent.
 */
class MyGPSThread : public QThread
{
    Q_OBJECT

public:
    MyGPSThread();

    /** Ends the thread, once it has been started, and wakes it from its read: nothing more is taken
     *  from the line. A device call under way is waited for. Any thread. */
    void stop();

signals:
    void newText(const QString &text);  ///< a chunk as read, line ends included
    void newTime(const QString &text);  ///< date and time
    void newPos(const QString &text);   ///< position
    void newSat(const QString &text);   ///< satellites in the fix
    void newAlt(const QString &text);   ///< altitude
    void newSpeed(const QString &text); ///< speed and heading
    void newAcc(const QString &text);   ///< accuracy
    void newLabel(const QString &text); ///< state of the antenna

protected:
    void run() override;

private:
    void showAntenna(const QString &text);
    void showLines(std::string_view chunk, GpsFields &fields);
    void show(const GpsTexts &texts);

    GpsLineShare line;
    SerialStop reading;
    std::atomic<int> labelsUnderWay{0};
};
