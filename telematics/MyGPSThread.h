#pragma once

#include <QString>
#include <QThread>

#include "frame/VornAux2.h"
#include "telematics/gpsParser.h"

#include <atomic>
#include <cstdint>

/** What the page says of the antenna.
 *  @param code of the asking
 *  @param status as the device told it; counts only where the asking went well */
QString antennaText(DeviceCode code, std::int32_t status);

/**
 * Reads the GPS receiver's line (gpsPort) and the state of its antenna, and sends what there is to
 * show. The line is opened and configured before the thread starts; the thread closes it and
 * clears gpsPort when it ends. It ends after gpsKeepRunning was set to 0 or its interruption was
 * requested, within one read, and has a device handle of its own. Without a usable line it goes on
 * asking for the antenna, without pause; while this object's own thread, the window's, is some
 * hundred labels behind, no further one is sent.
 */
class MyGPSThread : public QThread
{
    Q_OBJECT

public:
    MyGPSThread();

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

    std::atomic<int> labelsUnderWay{0};
};
