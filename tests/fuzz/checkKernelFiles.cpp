#include "tests/fuzz/KernelFiles.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/require.h"

#include "frame/VornAux2.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace {

using namespace kernelfiles;

/** The unit under test: a library beside the test, or what the fuzzer consists of. */
void *function(const char *name)
{
    static void *const unit = ::dlopen(VORN_FUZZED_UNIT, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void *const found = unit ? ::dlsym(unit, name) : nullptr;
    REQUIRE(found);
    return found;
}

#define UNIT(operation) reinterpret_cast<decltype(&::operation)>(function(#operation))

/** A handle of a family, for one input, so that nothing of the last one is known. */
template <typename Handle>
class Device
{
public:
    Device(Handle (*create)(), void (*givesBack)(Handle))
        : handle(create())
        , release(givesBack)
    {
        REQUIRE(handle);
    }
    ~Device() { release(handle); }
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    operator Handle() const { return handle; }

private:
    const Handle handle;
    void (*const release)(Handle);
};

#define DEVICE(family) UNIT(family##_create), UNIT(family##_release)

/** Whether a reading may have come too late for this input: it answers what was read before, or
 *  18, as nobody waits longer for a machine that is busy with other things. */
bool isLate = false;

#define HOLDS(condition) REQUIRE(isLate || (condition))

template <typename Call>
DeviceCode timed(const Call &call)
{
    constexpr std::chrono::milliseconds soon{80};
    const auto start = std::chrono::steady_clock::now();
    const DeviceCode code = call();
    isLate = isLate || std::chrono::steady_clock::now() - start > soon;
    return code;
}

/** A failure that files alone can lead to, with a text that a box can show. */
void checkFailure(DeviceCode code)
{
    constexpr DeviceCode kinds = 1000;
    // 6 is for a channel and 7 for a sensor that isn't there, 104 for what nobody understands.
    static const std::set<DeviceCode> known{
        DEVICE_NOT_SUPPORTED, 6, 7, DEVICE_DATA_NOT_AVAILABLE, 104};
    REQUIRE(known.contains(code % kinds));
    const std::string text = UNIT(deviceErrorText)(code);
    REQUIRE(!text.empty());
    REQUIRE(std::all_of(text.begin(), text.end(),
        [](char byte) { return static_cast<unsigned char>(byte) >= ' ' && byte != '\x7F'; }));
}

/** What an operation answered, nothing if it failed. It writes on success alone. */
template <typename T, typename Operation>
std::optional<T> ask(const Operation &operation)
{
    T value;
    T before;
    std::memset(static_cast<void *>(&value), 0xA5, sizeof value);
    std::memcpy(static_cast<void *>(&before), &value, sizeof value);
    const DeviceCode code = timed([&] { return operation(&value); });
    if (code == DEVICE_OK)
        return value;
    REQUIRE(std::memcmp(&value, &before, sizeof value) == 0);
    checkFailure(code);
    return std::nullopt;
}

#define ASK(type, operation, handle) \
    ask<type>([&](type *value) { return UNIT(operation)(handle, value); })

constexpr std::uint32_t longestText = 199; ///< without its end

template <typename Operation>
std::optional<std::string> askText(const Operation &operation)
{
    constexpr std::uint32_t size = longestText + 1;
    char buffer[size];
    std::memset(buffer, '#', size);
    const DeviceCode code = timed([&] { return operation(buffer, size); });
    if (code != DEVICE_OK) {
        REQUIRE(buffer[0] == '#');
        checkFailure(code);
        return std::nullopt;
    }
    const auto *const end = static_cast<const char *>(std::memchr(buffer, '\0', size));
    REQUIRE(end);
    return std::string(static_cast<const char *>(buffer), end);
}

/** A text is the first line of one of these files, cut to the buffer. */
void checkText(DeviceCode (*operation)(HardwareHandle, char *, std::uint32_t),
    HardwareHandle handle, std::initializer_list<File> files)
{
    const auto text =
        askText([&](char *buffer, std::uint32_t size) { return operation(handle, buffer, size); });
    if (!text)
        return;
    HOLDS(!text->empty());
    HOLDS(std::any_of(files.begin(), files.end(), [&](File file) {
        const auto first = line(file).value_or("");
        // What Latin-1 hasn't got is written another way.
        return std::any_of(first.begin(), first.end(), [](char byte) {
            return (static_cast<unsigned char>(byte) & 0x80U) != 0;
        }) || *text == first.substr(0, longestText);
    }));
}

void checkHardware()
{
    const Device<HardwareHandle> handle(DEVICE(Hardware));
    checkText(UNIT(Hardware_getMainPcbSerial), handle, {BoardSerial});
    checkText(UNIT(Hardware_getMainPcbArticleNumber), handle, {BoardName, TreeModel});
    checkText(UNIT(Hardware_getMainProductArticleNumber), handle, {ProductSku});
    checkText(UNIT(Hardware_getUnitSerialNumber), handle, {ProductSerial, TreeSerial});
    const auto ethernet = ASK(std::uint8_t, Hardware_getEthernetCount, handle);
    // The other interface doesn't say what it is.
    const int sockets = whole(EthernetType) == 1 ? 1 : 0;
    HOLDS(ethernet && *ethernet <= sockets);
    HOLDS(text(EthernetUevent) != "INTERFACE=eth0\n" || *ethernet == sockets);
    const auto can = ASK(std::uint8_t, Hardware_getCanCount, handle);
    HOLDS(can && *can == (whole(EthernetType) == 280 ? 1 : 0) + (whole(CanType) == 280 ? 1 : 0));
    const auto serial = ASK(std::uint8_t, Hardware_getSerialCount, handle);
    HOLDS(serial && *serial == (whole(SerialType).value_or(0) != 0 ? 1 : 0));
    for (const auto operation :
        {UNIT(Hardware_hasDisplay), UNIT(Hardware_hasTouchscreen), UNIT(Hardware_hasWlan),
            UNIT(Hardware_hasGps), UNIT(Hardware_hasGsm), UNIT(Hardware_hasBluetooth)}) {
        const auto flag =
            ask<DeviceBool>([&](DeviceBool *value) { return operation(handle, value); });
        HOLDS(flag && *flag <= 1);
    }
    const Device<BuzzerHandle> buzzer(DEVICE(Buzzer));
    const auto hertz = ASK(std::uint16_t, Buzzer_getFrequency, buzzer);
    HOLDS(!hertz || (*hertz >= 700 && *hertz <= 10000));
}

void checkVersions()
{
    const Device<VersionsHandle> handle(DEVICE(Versions));
    using Numbers = std::array<std::uint8_t, 4>;
    for (const auto operation : {UNIT(Versions_getSSVersion), UNIT(Versions_getVornAuxDrvVersion),
             UNIT(Versions_getOSVersion)}) {
        const auto version = ask<Numbers>([&](Numbers *value) {
            auto &[major, minor, release, build] = *value;
            return operation(handle, &major, &minor, &release, &build);
        });
        if (version && operation == UNIT(Versions_getVornAuxDrvVersion))
            HOLDS(std::strtoul(line(KernelRelease)->c_str(), nullptr, 10) == version->front());
    }
}

std::optional<std::uint8_t> expectedIntensity()
{
    constexpr std::int64_t top = 255;
    const auto highest = whole(MaxBrightness);
    const auto raw = whole(Brightness);
    if (!highest || !raw || *highest < 1 || *highest > INT32_MAX || *raw < 0 || *raw > *highest)
        return std::nullopt;
    return std::uint8_t((*raw * top + *highest / 2) / *highest);
}

void checkBacklight()
{
    const Device<BacklightHandle> handle(DEVICE(Backlight));
    HOLDS(ASK(std::uint8_t, Backlight_getIntensity, handle) == expectedIntensity());
    const auto isSound = ASK(DeviceBool, Backlight_getHealthStatus, handle);
    HOLDS(isSound == (whole(ActualBrightness) ? std::optional<DeviceBool>(1) : std::nullopt));
    const Device<PowerHandle> power(DEVICE(Power));
    const auto lit = ASK(std::int32_t, Power_getBLPowerStatus, power);
    const auto blank = whole(BlPower);
    HOLDS(lit == (blank ? std::optional(*blank == 0 ? STATUS_ON : STATUS_OFF) : std::nullopt));
}

void checkLight()
{
    const Device<LightSensorHandle> handle(DEVICE(LightSensor));
    const auto lux = ASK(std::uint16_t, LightSensor_getIlluminance, handle);
    const auto raw = real(LightRaw);
    const auto scale = real(LightScale);
    const auto offset = text(LightOffset) ? real(LightOffset) : std::optional(0.0);
    std::optional<std::uint16_t> expected;
    if (raw && scale && offset) {
        const double told = (*raw + *offset) * *scale;
        if (std::isfinite(told) && told >= 0)
            expected = std::uint16_t(std::lround(std::min(told, double(UINT16_MAX))));
    }
    HOLDS(lux == expected);
    const auto range = ASK(std::int32_t, LightSensor_getOperatingRange, handle);
    HOLDS(!range || *range == LIGHT_RANGE_STANDARD || *range == LIGHT_RANGE_EXTENDED);
    HOLDS(!range || scale);
}

/** Volts of a rail whose file has millivolts. */
std::optional<double> volts(std::optional<double> millivolts, double factor)
{
    if (!millivolts || !std::isfinite(*millivolts / 1000 * factor))
        return std::nullopt;
    return *millivolts / 1000 * factor;
}

void checkVoltages()
{
    const Device<AdcHandle> handle(DEVICE(Adc));
    const auto rail = [&](std::uint32_t channel) {
        return ask<double>(
            [&](double *value) { return UNIT(Adc_getVoltage)(handle, channel, value); });
    };
    HOLDS(!rail(1) && !rail(24));
    if (line(BoardChip) == sane(BoardChip))
        HOLDS(rail(2) == volts(real(BoardVoltage), 5.7));
    if (line(AdcName) != sane(AdcName))
        return;
    std::optional<double> millivolts;
    if (const auto raw = real(AdcRaw), scale = real(AdcScale); raw && scale)
        millivolts = *raw * *scale;
    HOLDS(rail(5) == volts(millivolts, 1));
}

std::optional<std::int16_t> celsius(File file)
{
    const auto thousandths = real(file);
    if (!thousandths || *thousandths / 1000 < -273.15 || *thousandths / 1000 > 1000)
        return std::nullopt;
    return std::int16_t(std::lround(*thousandths / 1000));
}

void checkTemperatures()
{
    const Device<DiagnosticsHandle> handle(DEVICE(Diagnostics));
    std::multiset<std::int16_t> left;
    for (const File file : {CoreTemperature, BoardTemperature, ZoneTemperature}) {
        if (const auto told = celsius(file))
            left.insert(*told);
    }
    const auto measured = left;
    bool isAtEnd = false;
    for (std::uint8_t index = 0; !isAtEnd; ++index) {
        HOLDS(index <= measured.size());
        std::int32_t kind = -1;
        const auto told = ask<std::int16_t>([&](std::int16_t *value) {
            return UNIT(Diagnostics_getPMTemp)(handle, index, value, &kind);
        });
        isAtEnd = !told;
        HOLDS(isAtEnd || (kind >= SENSOR_CPU && kind <= SENSOR_OTHER));
        if (told) {
            const auto found = left.find(*told);
            HOLDS(found != left.end());
            left.erase(found);
        }
    }
    const bool isSane = line(CoreChip) == sane(CoreChip) && line(BoardChip) == sane(BoardChip) &&
                        line(ZoneType) == sane(ZoneType) && whole(BoardFault).value_or(0) == 0;
    HOLDS(!isSane || left.empty());
    const auto supervisor = ASK(std::int16_t, Diagnostics_getSSTemp, handle);
    HOLDS(!isSane || supervisor == celsius(BoardTemperature));
    const auto board = ASK(std::int16_t, Diagnostics_getPCBTemp, handle);
    HOLDS(!board || measured.contains(*board));
}

bool hasBattery()
{
    return line(BatteryType) == "Battery" && line(BatteryScope) != "Device" &&
           whole(BatteryPresent) != 0;
}

std::optional<std::uint8_t> expectedPercent()
{
    std::optional<double> percent;
    if (text(Capacity))
        percent = whole(Capacity);
    else if (const auto now = real(ChargeNow), full = real(ChargeFull); now && full && *full > 0)
        percent = *now / *full * 100;
    if (!percent || !(*percent >= 0 && *percent <= 110))
        return std::nullopt;
    return std::uint8_t(std::min(std::lround(*percent), 100L));
}

void checkBattery()
{
    const Device<BatteryHandle> handle(DEVICE(Battery));
    const auto available = ASK(DeviceBool, Battery_isAvailable, handle);
    HOLDS(available && *available == hasBattery());
    const auto percent = ASK(std::uint8_t, Battery_getVoltageLevel, handle);
    HOLDS(percent == (hasBattery() ? expectedPercent() : std::nullopt));
    const auto tenths = real(BatteryTemperature);
    std::optional<std::int16_t> warm;
    if (hasBattery() && tenths && *tenths / 10 >= -100 && *tenths / 10 <= 200)
        warm = std::int16_t(std::lround(*tenths / 10));
    HOLDS(ASK(std::int16_t, Battery_getTemperature, handle) == warm);
    const auto charging = ASK(std::int32_t, Battery_getChargingStatus, handle);
    HOLDS(!charging || (*charging >= CHARGING_IDLE && *charging <= CHARGING_UNKNOWN));
    HOLDS((charging == CHARGING_ACTIVE) == (hasBattery() && line(BatteryStatus) == "Charging"));
    const auto source = ASK(std::int32_t, Battery_getPowerSource, handle);
    HOLDS(!source || *source == POWER_BATTERY || *source == POWER_EXTERNAL);
    if (const auto online = whole(ChargerOnline);
        hasBattery() && online && line(ChargerType) && line(ChargerType) != "Battery")
        HOLDS(source == (*online > 0 ? POWER_EXTERNAL : POWER_BATTERY));
    const auto error = ASK(std::int32_t, Battery_getHwErrorStatus, handle);
    HOLDS(!error || (*error >= BATTERY_NO_ERROR && *error <= BATTERY_NOT_INITIATED));
    for (const auto operation : {UNIT(Battery_getHwVersion), UNIT(Battery_getSerialNumber)})
        askText([&](char *buffer, std::uint32_t size) { return operation(handle, buffer, size); });
}

void checkLed()
{
    const Device<FrontLEDHandle> handle(DEVICE(FrontLED));
    using Color = std::array<std::uint8_t, 3>;
    const auto color = ask<Color>([&](Color *value) {
        auto &[red, green, blue] = *value;
        return UNIT(FrontLED_getColor)(handle, &red, &green, &blue);
    });
    constexpr std::uint8_t top = 15;
    HOLDS(!color || *std::max_element(color->begin(), color->end()) <= top);
    HOLDS(!color || whole(LedLevel) != 0 || *color == Color{});
    const auto standard = ASK(std::int32_t, FrontLED_getStandardColor, handle);
    HOLDS(!standard || (*standard >= LED_RED && *standard <= LED_YELLOW));
    std::uint8_t duty = 0;
    const auto hertz =
        ask<double>([&](double *value) { return UNIT(FrontLED_getSignal)(handle, value, &duty); });
    HOLDS(!hertz || (*hertz > 0 && duty <= 100));
    ASK(std::uint8_t, FrontLED_getNrOfPulses, handle);
    ASK(std::uint8_t, FrontLED_getIdleTime, handle);
}

void checkRadio()
{
    const Device<TelematicsHandle> handle(DEVICE(Telematics));
    std::optional<std::int32_t> expected;
    const auto soft = whole(RadioSoft);
    const auto hard = whole(RadioHard);
    if (line(RadioType) == "wlan" && soft && (*soft != 0 || hard))
        expected = *soft == 0 && *hard == 0 ? STATUS_ON : STATUS_OFF;
    HOLDS(ASK(std::int32_t, Telematics_getWLANPowerStatus, handle) == expected);
    const auto available = ASK(std::int32_t, Telematics_getAvailable, handle);
    HOLDS(line(RadioType) != "wlan" || available == 1);
}

void checkSettings()
{
    const Device<ConfigHandle> handle(DEVICE(Config));
    const auto trigger = ASK(std::int32_t, Config_getStartupTriggerConfig, handle);
    HOLDS(!trigger || (*trigger >= TRIGGER_FRONT_BUTTON && *trigger <= TRIGGER_BOTH));
    const auto voltage = ASK(double, Config_getStartupVoltageConfig, handle);
    auto expected = real(StartVoltage);
    if (expected)
        expected = *expected * 0.001;
    HOLDS(voltage == (expected && *expected >= 0 ? expected : std::nullopt));
    const auto time = ASK(std::uint16_t, Config_getFrontBtnTrigTime, handle);
    HOLDS(!time || real(ButtonTime));
    const Device<PowerHandle> power(DEVICE(Power));
    const auto state = line(RegulatorState);
    const auto can = ASK(std::int32_t, Power_getCanPowerStatus, power);
    if (line(RegulatorName) == sane(RegulatorName) && state)
        HOLDS(can.has_value() == (state == "enabled" || state == "disabled"));
    HOLDS(!can || *can == (state == "enabled" ? STATUS_ON : STATUS_OFF));
}

struct Family {
    Room room;
    void (*check)();
};
constexpr Family families[] = {{Room::Identity, &checkHardware}, {Room::Identity, &checkVersions},
    {Room::Backlight, &checkBacklight}, {Room::Light, &checkLight}, {Room::Sensors, &checkVoltages},
    {Room::Sensors, &checkTemperatures}, {Room::Battery, &checkBattery}, {Room::Led, &checkLed},
    {Room::Radio, &checkRadio}, {Room::Settings, &checkSettings}};

} // namespace

void checkKernelFiles(const std::uint8_t *bytes, std::size_t size)
{
    // While there is a handle the threads that read stay, which saves most of the time.
    static auto handle = std::make_unique<Device<SettingsHandle>>(DEVICE(Settings));
    const auto rooms = lay({reinterpret_cast<const char *>(bytes), size});
    if (std::exchange(isLate, false)) {
        handle.reset(); // and with it what was read
        handle = std::make_unique<Device<SettingsHandle>>(DEVICE(Settings));
    }
    for (const auto &family : families) {
        if (rooms.contains(family.room))
            family.check();
    }
}
