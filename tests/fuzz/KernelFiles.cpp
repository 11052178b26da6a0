#include "tests/fuzz/KernelFiles.h"
#include "tests/fuzz/require.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace kernelfiles {

namespace {

struct Row {
    Room room;
    const char *path;
    const char *content; ///< on a machine in good order; null for a file that isn't there
};

#define DMI "/sys/class/dmi/id/"
#define INPUT "/sys/class/input/input3/"
#define PANEL "/sys/class/backlight/panel/"
#define LIGHT "/sys/bus/iio/devices/iio:device0/"
#define ADC "/sys/bus/iio/devices/iio:device1/"
#define BOARD "/sys/class/hwmon/hwmon1/"
#define BATTERY "/sys/class/power_supply/BAT0/"
#define LED "/sys/class/leds/front/"
#define RADIO "/sys/class/rfkill/rfkill0/"
#define CONTROLLER "/sys/bus/i2c/devices/1-0021/"
#define REGULATOR "/sys/bus/platform/drivers/reg-userspace-consumer/can-power/"

constexpr Row rows[] = {
    {Room::Identity, DMI "board_serial", "CN0H35PJ7016618S00QG\n"},
    {Room::Identity, DMI "board_name", "UTC-510D\n"},
    {Room::Identity, DMI "board_version", "A101-1\n"},
    {Room::Identity, DMI "product_serial", "KSA1234567\n"},
    {Room::Identity, DMI "product_sku", "Surface_3\n"},
    {Room::Identity, DMI "ec_firmware_release", "3.10\n"},
    {Room::Identity, "/proc/device-tree/serial-number", "10000000a1b2c3d4"},
    {Room::Identity, "/proc/device-tree/model", "Raspberry Pi 4 Model B Rev 1.4"},
    {Room::Identity, "/etc/os-release", "ID=debian\nVERSION_ID=\"12\"\n"},
    {Room::Identity, "/proc/sys/kernel/osrelease", "6.1.0-13-amd64\n"},
    {Room::Identity, "/sys/class/net/eth0/type", "1\n"},
    {Room::Identity, "/sys/class/net/eth0/uevent", "INTERFACE=eth0\n"},
    {Room::Identity, "/sys/class/net/can0/type", "280\n"},
    {Room::Identity, "/sys/class/tty/ttyS0/type", "4\n"},
    {Room::Identity, "/sys/class/drm/card0-eDP-1/status", "connected\n"},
    {Room::Identity, INPUT "properties", "2\n"},
    {Room::Identity, INPUT "capabilities/key", "400 0 0 0 0 0\n"},
    {Room::Identity, INPUT "capabilities/abs", "261800000000003\n"},
    {Room::Identity, INPUT "capabilities/snd", "6\n"},
    {Room::Identity, INPUT "event3/dev", "13:67\n"},
    {Room::Identity, "/run/udev/data/c13:67", nullptr},
    {Room::Backlight, PANEL "type", "raw\n"},
    {Room::Backlight, PANEL "max_brightness", "1500\n"},
    {Room::Backlight, PANEL "brightness", "600\n"},
    {Room::Backlight, PANEL "actual_brightness", "600\n"},
    {Room::Backlight, PANEL "bl_power", "0\n"},
    {Room::Light, LIGHT "name", "als\n"},
    {Room::Light, LIGHT "in_illuminance_raw", "209\n"},
    {Room::Light, LIGHT "in_illuminance_scale", "0.100000\n"},
    {Room::Light, LIGHT "in_illuminance_offset", nullptr},
    {Room::Light, LIGHT "in_illuminance_scale_available", "0.005000 0.100000 0.500000\n"},
    {Room::Sensors, "/sys/class/hwmon/hwmon0/name", "coretemp\n"},
    {Room::Sensors, "/sys/class/hwmon/hwmon0/temp1_input", "52000\n"},
    {Room::Sensors, "/sys/class/hwmon/hwmon0/temp1_label", "Package id 0\n"},
    {Room::Sensors, BOARD "name", "nct6106\n"},
    {Room::Sensors, BOARD "temp1_input", "41500\n"},
    {Room::Sensors, BOARD "temp1_fault", "0\n"},
    {Room::Sensors, BOARD "in0_input", "2104\n"},
    {Room::Sensors, BOARD "in0_label", "+12V\n"},
    {Room::Sensors, "/sys/class/thermal/thermal_zone0/type", "acpitz\n"},
    {Room::Sensors, "/sys/class/thermal/thermal_zone0/temp", "-26800\n"},
    {Room::Sensors, ADC "name", "ads1015\n"},
    {Room::Sensors, ADC "in_voltage0_raw", "1106\n"},
    {Room::Sensors, ADC "in_voltage_scale", "3.000000\n"},
    {Room::Battery, BATTERY "type", "Battery\n"},
    {Room::Battery, BATTERY "scope", nullptr},
    {Room::Battery, BATTERY "present", "1\n"},
    {Room::Battery, BATTERY "status", "Discharging\n"},
    {Room::Battery, BATTERY "health", "Good\n"},
    {Room::Battery, BATTERY "capacity", "87\n"},
    {Room::Battery, BATTERY "charge_now", "3570000\n"},
    {Room::Battery, BATTERY "charge_full", "4100000\n"},
    {Room::Battery, BATTERY "temp", "254\n"},
    {Room::Battery, BATTERY "serial_number", "4503\n"},
    {Room::Battery, BATTERY "model_name", "45N1041\n"},
    {Room::Battery, "/sys/class/power_supply/AC/type", "Mains\n"},
    {Room::Battery, "/sys/class/power_supply/AC/online", "0\n"},
    {Room::Led, LED "multi_index", "red green blue\n"},
    {Room::Led, LED "multi_intensity", "255 128 0\n"},
    {Room::Led, LED "brightness", "255\n"},
    {Room::Led, LED "max_brightness", "255\n"},
    {Room::Led, LED "trigger", "[none] timer pattern\n"},
    {Room::Radio, RADIO "type", "wlan\n"},
    {Room::Radio, RADIO "name", "phy0\n"},
    {Room::Radio, RADIO "soft", "0\n"},
    {Room::Radio, RADIO "hard", "0\n"},
    {Room::Settings, CONTROLLER "trigger", "front [signal] both\n"},
    {Room::Settings, CONTROLLER "wake_voltage", "9000\n"},
    {Room::Settings, CONTROLLER "button_time", "500\n"},
    {Room::Settings, REGULATOR "name", "vcc-can\n"},
    {Room::Settings, REGULATOR "state", "enabled\n"},
};
static_assert(std::size(rows) == FileCount);

constexpr const char *unit = R"({
    "adc": {"rails": [{"channel": 2, "chip": "nct6106", "input": "in0", "factor": 5.7},
                      {"channel": 5, "chip": "ads1015", "input": "in_voltage0"}]},
    "temperatures": {"supervisor": {"chip": "nct6106", "input": "temp1"}},
    "frontLed": {"multicolor": "front"},
    "power": {"can": {"regulator": "vcc-can"}},
    "config": {
        "startupTrigger": {"file": "/sys/bus/i2c/devices/1-0021/trigger", "values": ["front", "signal", "both"]},
        "startupVoltage": {"file": "/sys/bus/i2c/devices/1-00*/wake_voltage", "factor": 0.001},
        "frontButtonTime": {"file": "/sys/bus/i2c/devices/1-0021/button_time"}
    }
})";

std::optional<std::string> saneContent(unsigned file)
{
    const char *const content = rows[file].content;
    return content ? std::optional<std::string>(content) : std::nullopt;
}

/** The folder of the machine, which goes with the process. */
class Tree
{
public:
    Tree()
    {
        // In memory, where there is such a place: an input takes a hundred files.
        for (const std::filesystem::path &place :
            {std::filesystem::path("/dev/shm"), std::filesystem::temp_directory_path()}) {
            std::string name = place / "kernelfiles-XXXXXX";
            if (root.empty() && ::mkdtemp(name.data()))
                root = name;
        }
        REQUIRE(!root.empty());
        write("/etc/vornaux/unit.json", unit);
        for (const char *device :
            {"/sys/class/net/eth0", "/sys/class/net/can0", "/sys/class/tty/ttyS0"})
            std::filesystem::create_directories(root + device + "/device");
        for (unsigned i = 0; i < FileCount; ++i) {
            std::filesystem::create_directories(
                std::filesystem::path(root + rows[i].path).parent_path());
            put(i, saneContent(i));
        }
        ::setenv("VORNAUX_ROOT", root.c_str(), 1);
        ::setenv("XDG_STATE_HOME", (root + "/state").c_str(), 1);
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + root + "/no-bus").c_str(), 1);
        ::unsetenv("VORNAUX_CONFIG");
    }
    ~Tree()
    {
        std::error_code error;
        std::filesystem::remove_all(root, error);
    }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;

    void put(unsigned file, const std::optional<std::string> &content)
    {
        if (content == present[file])
            return;
        if (content)
            write(rows[file].path, *content);
        else
            std::filesystem::remove(root + rows[file].path);
        present[file] = content;
    }

    std::array<std::optional<std::string>, FileCount> present;

private:
    void write(const std::string &path, const std::string &content) const
    {
        std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
        std::ofstream file(root + path, std::ios::binary);
        file << content;
        file.close();
        REQUIRE(file);
    }

    std::string root;
};

Tree &tree()
{
    static Tree only;
    return only;
}

} // namespace

std::set<Room> lay(std::string_view bytes)
{
    constexpr char separator = '\x1E';
    std::array<std::optional<std::string>, FileCount> wanted;
    for (unsigned i = 0; i < FileCount; ++i)
        wanted[i] = saneContent(i);
    std::set<Room> rooms;
    while (!bytes.empty()) {
        const auto record = bytes.substr(0, bytes.find(separator));
        bytes.remove_prefix(std::min(record.size() + 1, bytes.size()));
        const auto file = record.empty() ? FileCount : unsigned(record.front()) - unsigned('!');
        if (file >= FileCount)
            continue;
        const auto content = record.substr(1);
        wanted[file] = content == "\x7F" ? std::nullopt : std::optional<std::string>(content);
        rooms.insert(rows[file].room);
    }
    for (unsigned i = 0; i < FileCount; ++i)
        tree().put(i, wanted[i]);
    if (rooms.empty()) {
        for (const auto &row : rows)
            rooms.insert(row.room);
    }
    return rooms;
}

const std::optional<std::string> &text(File file)
{
    return tree().present[file];
}

std::optional<std::string> line(File file)
{
    if (!text(file))
        return std::nullopt;
    constexpr std::size_t longest = 4096; // a page, which the kernel gives at most
    auto first = text(file)->substr(0, longest);
    first.resize(std::min(first.find_first_of(std::string_view("\n\0", 2)), first.size()));
    const char *const blanks = " \t\r";
    first.erase(0, std::min(first.find_first_not_of(blanks), first.size()));
    first.resize(first.find_last_not_of(blanks) + 1);
    return first;
}

namespace {

template <typename T>
std::optional<T> numberIn(File file)
{
    const auto first = line(file);
    T number = 0;
    if (!first)
        return std::nullopt;
    const char *const end = first->data() + first->size();
    const auto [stop, error] = std::from_chars(first->data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<std::int64_t> whole(File file)
{
    return numberIn<std::int64_t>(file);
}

std::optional<double> real(File file)
{
    const auto number = numberIn<double>(file);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::string sane(File file)
{
    std::string content = rows[file].content ? rows[file].content : "";
    return content.substr(0, content.find('\n'));
}

} // namespace kernelfiles
