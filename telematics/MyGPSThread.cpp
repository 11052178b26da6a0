#include "telematics/MyGPSThread.h"

#include "frame/DeviceHandle.h"

#include <array>
#include <cstring>

namespace {

constexpr unsigned long pauseBetweenChunks = 10; // milliseconds
constexpr int mostLabelsUnderWay = 500;

/** The flag is everybody's: a thread whose page has left it ends though the next one has set the
 *  flag again, and one that was stopped before it came to set the flag itself. */
bool keepsRunning()
{
    return gpsKeepRunning.load(std::memory_order_relaxed) != 0 &&
           !QThread::currentThread()->isInterruptionRequested();
}

QString shown(std::string_view text)
{
    return QString::fromUtf8(text.data(), int(text.size()));
}

} // namespace

QString antennaText(DeviceCode code, std::int32_t status)
{
    if (code != DEVICE_OK)
        return QStringLiteral("GPS antenna status: Unknown");
    return status == 1 ? QStringLiteral("GPS antenna status: OK")
                       : QStringLiteral("GPS antenna status: Error: Open or short");
}

MyGPSThread::MyGPSThread()
{
    // Queued like the page's slots, so it tells how far the window has come.
    connect(this, &MyGPSThread::newLabel, this, [this] { --labelsUnderWay; });
}

void MyGPSThread::stop()
{
    requestInterruption();
    reading.request();
}

void MyGPSThread::run()
{
    gpsKeepRunning.store(1, std::memory_order_relaxed);
    GpsFields fields;
    DeviceHandle<Telematics_create, Telematics_release> telematics;
    while (keepsRunning()) {
        std::int32_t antenna = 0;
        const auto code = Telematics_getGPSAntennaStatus(telematics, &antenna);
        showAntenna(antennaText(code, antenna));
        std::array<char, 512> buffer{};
        // A result would say nothing that the buffer doesn't: what came in time is there.
        serialRead(gpsPort, buffer.data(), buffer.size(), &reading);
        const std::string_view chunk(buffer.data(), ::strnlen(buffer.data(), buffer.size()));
        if (chunk.empty())
            continue;
        emit newText(shown(chunk));
        msleep(pauseBetweenChunks);
        showLines(chunk, fields);
    }
    telematics.release();
    line.giveBack();
}

/** Without a line the labels come faster than a busy window takes them, and would fill the memory.
 */
void MyGPSThread::showAntenna(const QString &text)
{
    if (labelsUnderWay >= mostLabelsUnderWay)
        return;
    ++labelsUnderWay;
    emit newLabel(text);
}

/** Sentences are not put together across chunks: each piece of a cut one is looked at by itself. */
void MyGPSThread::showLines(std::string_view chunk, GpsFields &fields)
{
    GpsLines lines(chunk);
    while (!lines.atEnd() && keepsRunning()) {
        // A chunk without a line feed is the last one: nothing is read until the stop.
        if (lines.stuck())
            msleep(pauseBetweenChunks);
        show(readGpsLine(lines.next(), fields));
    }
}

void MyGPSThread::show(const GpsTexts &texts)
{
    if (texts.time)
        emit newTime(shown(*texts.time));
    if (texts.position)
        emit newPos(shown(*texts.position));
    if (texts.speed)
        emit newSpeed(shown(*texts.speed));
    if (texts.altitude)
        emit newAlt(shown(*texts.altitude));
    if (texts.satellites)
        emit newSat(shown(*texts.satellites));
    if (texts.accuracy)
        emit newAcc(shown(*texts.accuracy));
}
