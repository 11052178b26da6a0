#include "linuxunit/devices/Sensors.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/iio.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>

namespace linuxunit {

namespace {

constexpr const char *chips = "/sys/class/hwmon";
constexpr const char *zones = "/sys/class/thermal";
constexpr std::string_view inputEnding = "_input";
constexpr std::chrono::seconds walkLasts{1}; ///< the values of one walk are of one moment

std::string below(const std::string &folder, const std::string &name)
{
    return std::string(folder).append("/").append(name);
}

/** A chip's folder and those of its files: old drivers have them one level down. */
struct Chip {
    std::string folder; ///< where its files are
    std::string name;
};

std::vector<Chip> findChips()
{
    std::vector<Chip> all;
    for (const auto &entry : namesIn(chips)) {
        const auto folder = below(chips, entry);
        for (const auto &place : {folder, folder + "/device"}) {
            if (const auto name = textOf(place + "/name"); name && !name->empty()) {
                all.push_back({place, *name});
                break;
            }
        }
    }
    return all;
}

/** "temp1" for each temp1_input of a chip. */
std::vector<std::string> inputsOf(const Chip &chip, std::string_view beginning)
{
    std::vector<std::string> inputs;
    for (const auto &name : namesIn(chip.folder)) {
        const auto isDigit = name.size() > beginning.size() && name[beginning.size()] >= '0' &&
                             name[beginning.size()] <= '9';
        if (name.starts_with(beginning) && isDigit && name.ends_with(inputEnding))
            inputs.push_back(name.substr(0, name.size() - inputEnding.size()));
    }
    return inputs;
}

/** An average or a peak of an IIO channel, beside it; no channel of its own. */
bool isDerived(const std::string &channel)
{
    return channel.ends_with("_mean") || channel.ends_with("_peak");
}

/** What chips and zones of these names measure. The first that the name begins with counts. */
struct KindOfName {
    const char *beginning;
    ProcessorSensorKind kind;
};
constexpr KindOfName kinds[] = {{"coretemp", SENSOR_CPU}, {"k10temp", SENSOR_CPU},
    {"k8temp", SENSOR_CPU}, {"zenpower", SENSOR_CPU}, {"cpu", SENSOR_CPU},
    {"x86_pkg_temp", SENSOR_CPU}, {"soc_dts", SENSOR_CPU}, {"soc", SENSOR_CPU},
    {"bigcore", SENSOR_CPU}, {"littlecore", SENSOR_CPU}, {"big", SENSOR_CPU},
    {"little", SENSOR_CPU}, {"package", SENSOR_CPU}, {"TCPU", SENSOR_CPU}, {"B0D4", SENSOR_CPU},
    {"main", SENSOR_CPU}, {"center", SENSOR_CPU}, {"imx_thermal", SENSOR_CPU},
    {"acpitz", SENSOR_BOARD}, {"it8", SENSOR_BOARD}, {"nct6", SENSOR_BOARD}, {"w83", SENSOR_BOARD},
    {"f718", SENSOR_BOARD}, {"f719", SENSOR_BOARD}, {"lm75", SENSOR_BOARD}, {"lm90", SENSOR_BOARD},
    {"sch5", SENSOR_BOARD}, {"tmp", SENSOR_BOARD}, {"board", SENSOR_BOARD},
    {"sht", SENSOR_ENVIRONMENT}, {"hdc", SENSOR_ENVIRONMENT}, {"ambient", SENSOR_ENVIRONMENT},
    {"pch", SENSOR_CHIPSETS}, {"amdgpu", SENSOR_VIDEO}, {"radeon", SENSOR_VIDEO},
    {"nouveau", SENSOR_VIDEO}, {"i915", SENSOR_VIDEO}, {"gpu", SENSOR_VIDEO},
    {"npu", SENSOR_OTHER}};

ProcessorSensorKind kindOf(const std::string &name)
{
    const auto *const found = std::find_if(std::begin(kinds), std::end(kinds),
        [&](const KindOfName &row) { return name.starts_with(row.beginning); });
    return found == std::end(kinds) ? SENSOR_OTHER : found->kind;
}

ProcessorSensorKind kindNamed(const std::string &name)
{
    constexpr const char *names[] = {
        "cpu", "box", "environment", "board", "backplane", "chipsets", "video", "other"};
    const auto *const found = std::find(std::begin(names), std::end(names), name);
    return ProcessorSensorKind(found - std::begin(names));
}

/** The kernel makes a chip of each power supply: of the supply's name, where "-" has become "_".
 *  @param parent name of the chip's device */
bool isBattery(const std::string &chip, const std::string &parent)
{
    constexpr const char *supplies = "/sys/class/power_supply";
    return exists(below(supplies, chip)) || (!parent.empty() && exists(below(supplies, parent))) ||
           chip.starts_with("BAT") || chip.starts_with("ucsi_source_psy");
}

void addChips(std::vector<Temperature> &all, std::set<std::string> &zonesOfChips)
{
    for (const auto &chip : findChips()) {
        const auto parent = linkName(chip.folder + "/device");
        if (parent.starts_with("thermal_zone"))
            zonesOfChips.insert(parent);
        if (isBattery(chip.name, parent))
            continue;
        for (const auto &input : inputsOf(chip, "temp")) {
            const auto file = below(chip.folder, input);
            all.push_back({file + std::string(inputEnding), chip.name, input,
                textOf(file + "_label").value_or(""), kindOf(chip.name)});
        }
    }
}

void addZones(std::vector<Temperature> &all, const std::set<std::string> &zonesOfChips)
{
    const bool hasCores = std::any_of(all.begin(), all.end(),
        [](const Temperature &sensor) { return sensor.chip == "coretemp"; });
    for (const auto &name : namesIn(zones)) {
        if (!name.starts_with("thermal_zone") || zonesOfChips.contains(name))
            continue;
        const auto folder = below(zones, name);
        const auto type = textOf(folder + "/type").value_or("");
        // The package's sensor, which the cores' chip has already.
        if (type.empty() || (type == "x86_pkg_temp" && hasCores))
            continue;
        all.push_back({folder + "/temp", type, "temp", "", kindOf(type)});
    }
}

bool fits(const nlohmann::json &wanted, const char *key, const std::string &present)
{
    const auto found = wanted.find(key);
    return found == wanted.end() || found->get_ref<const std::string &>() == present;
}

/** Of several that are alike, as zones of the same type, "number" tells which. */
template <typename Sensor>
const Sensor *findNamed(const std::vector<Sensor> &all, const nlohmann::json &wanted)
{
    auto before = wanted.value("number", 0U);
    for (const auto &sensor : all) {
        if (fits(wanted, "chip", sensor.chip) && fits(wanted, "input", sensor.input) &&
            fits(wanted, "label", sensor.label) && before-- == 0)
            return &sensor;
    }
    return nullptr;
}

/** Where the chip tells that the sensor is broken, which it may have to be asked for; empty if it
 *  can't tell. */
std::string faultFileOf(const Temperature &sensor)
{
    if (!sensor.file.ends_with(inputEnding))
        return {};
    auto file = sensor.file.substr(0, sensor.file.size() - inputEnding.size()) + "_fault";
    return exists(file) ? file : std::string();
}

bool isSet(const std::string &file, const std::optional<std::string> &flag)
{
    try {
        return flag && numberIn(file, *flag) != 0;
    } catch (const Failure &) {
        return false;
    }
}

bool isFaulty(const Temperature &sensor, Deadline until)
{
    const auto file = faultFileOf(sensor);
    return !file.empty() && isSet(file, readSlowTexts({file}, until).front());
}

/** The sensors of the walk: those of the configuration in its order, else all. */
std::vector<Temperature> walkedSensors()
{
    const auto machine = Machine::present();
    const auto &wanted = machine->part("temperatures", "processor");
    auto all = findTemperatures();
    if (!wanted.is_array())
        return all;
    std::vector<Temperature> walked;
    for (const auto &entry : wanted) {
        const auto *sensor = findNamed(all, entry);
        if (!sensor)
            continue;
        walked.push_back(*sensor);
        walked.back().kind = kindNamed(entry.at("kind").get<std::string>());
    }
    return walked;
}

} // namespace

std::vector<Temperature> findTemperatures()
{
    std::vector<Temperature> all;
    std::set<std::string> zonesOfChips;
    addChips(all, zonesOfChips);
    addZones(all, zonesOfChips);
    std::stable_sort(all.begin(), all.end(), [](const Temperature &one, const Temperature &other) {
        if (one.kind != other.kind)
            return one.kind < other.kind;
        if (one.chip != other.chip)
            return one.chip < other.chip;
        return ::strverscmp(one.input.c_str(), other.input.c_str()) < 0;
    });
    return all;
}

std::vector<Voltage> findVoltages()
{
    std::vector<Voltage> all;
    for (const auto &chip : findChips()) {
        for (const auto &input : inputsOf(chip, "in"))
            all.push_back({chip.folder, chip.name, input,
                textOf(below(chip.folder, input) + "_label").value_or(""), false});
    }
    for (const auto &folder : iioDevices()) {
        for (const auto &name : namesIn(folder)) {
            const auto end = name.rfind('_');
            const auto channel = name.substr(0, end);
            if (!name.starts_with("in_voltage") ||
                (!name.ends_with("_raw") && !name.ends_with(inputEnding)))
                continue;
            if (name.ends_with("_raw") && (isDerived(channel) || !hasIioScale(folder, channel) ||
                                              exists(below(folder, channel) + "_input")))
                continue;
            all.push_back({folder, textOf(folder + "/name").value_or(""), channel,
                textOf(below(folder, channel) + "_label").value_or(""), true});
        }
    }
    return all;
}

std::int16_t celsiusIn(const std::string &file, double thousandths)
{
    constexpr double absoluteZero = -273.15;
    constexpr double hottest = 1000; // no sensor of a computer is there to tell more
    const double celsius = thousandths / 1000;
    if (!(celsius >= absoluteZero && celsius <= hottest))
        throw Failure{UnexpectedContent, file + " tells of " + roundedText(celsius) + " degrees C"};
    return std::int16_t(std::lround(celsius));
}

std::int16_t Thermometers::named(const char *which)
{
    const auto machine = Machine::present();
    const auto &wanted = machine->part("temperatures", which);
    if (!wanted.is_object())
        throw Failure{NotSupported, {}};
    const auto all = findTemperatures();
    const auto *sensor = findNamed(all, wanted);
    const auto until = soon();
    if (!sensor || isFaulty(*sensor, until))
        throw Failure{NotAvailable, {}};
    return celsiusIn(sensor->file, readSlowReal(sensor->file, until));
}

std::int16_t Thermometers::supervisor()
{
    return named("supervisor");
}

std::int16_t Thermometers::board()
{
    const auto machine = Machine::present();
    if (machine->part("temperatures", "board").is_object())
        return named("board");
    const auto until = soon();
    for (const auto &sensor : findTemperatures()) {
        if (sensor.kind == SENSOR_BOARD && !isFaulty(sensor, until))
            return celsiusIn(sensor.file, readSlowReal(sensor.file, until));
    }
    throw Failure{NotSupported, {}};
}

void Thermometers::look()
{
    seen.clear();
    const auto sensors = walkedSensors();
    std::vector<std::string> files;
    files.reserve(2 * sensors.size());
    for (const auto &sensor : sensors)
        files.push_back(sensor.file);
    std::map<std::string, std::size_t> faults; // places of their texts, by the sensor's file
    for (const auto &sensor : sensors) {
        auto fault = faultFileOf(sensor);
        if (fault.empty())
            continue;
        faults[sensor.file] = files.size();
        files.push_back(std::move(fault));
    }
    const auto texts = readSlowTexts(files);
    for (std::size_t i = 0; i < sensors.size(); ++i) {
        const auto fault = faults.find(files[i]);
        if (!texts[i] || (fault != faults.end() && isSet(fault->first, texts[fault->second])))
            continue;
        try {
            seen.push_back({sensors[i], celsiusIn(files[i], realIn(files[i], *texts[i]))});
        } catch (const Failure &) {
            // One that can't be read would end the walk before all others.
        }
    }
    lookedAt = std::chrono::steady_clock::now();
    if (sensors.empty())
        throw Failure{NotSupported, {}};
}

Thermometers::Reading Thermometers::processor(std::uint8_t index)
{
    const auto isOld = [this] { return std::chrono::steady_clock::now() - lookedAt > walkLasts; };
    if (index == 0 || seen.empty())
        look();
    if (index >= seen.size())
        throw Failure{NoSuchSensor, {}};
    auto &one = seen[index];
    if (isOld())
        one.celsius = celsiusIn(one.sensor.file, readSlowReal(one.sensor.file));
    return {one.celsius, one.sensor.kind};
}

double railVoltage(std::uint32_t channel)
{
    constexpr std::uint32_t none = 1;
    constexpr std::uint32_t last = 23;
    if (channel == none || channel > last)
        throw Failure{NoSuchChannel, {}};
    const auto machine = Machine::present();
    for (const auto &rail : machine->part("adc", "rails")) {
        if (rail.at("channel").get<std::uint32_t>() != channel)
            continue;
        const auto all = findVoltages();
        const auto *voltage = findNamed(all, rail);
        if (!voltage)
            throw Failure{NotAvailable, {}};
        const auto millivolts =
            voltage->isIio
                ? readIio(voltage->folder, voltage->input)
                : readSlowReal(below(voltage->folder, voltage->input) + std::string(inputEnding));
        const double volts = millivolts / 1000 * rail.value("factor", 1.0);
        if (!std::isfinite(volts))
            throw Failure{UnexpectedContent,
                below(voltage->folder, voltage->input) + " tells of no voltage that can be"};
        return volts;
    }
    throw Failure{NotSupported, {}};
}

} // namespace linuxunit
