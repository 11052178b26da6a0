#include "telematics/telematicsState.h"

std::atomic<SerialPort *> gpsPort{nullptr};
SerialPort *gsmPort = nullptr;
std::atomic<std::uint8_t> gpsKeepRunning{0};
bool gpsDataMode = false;
