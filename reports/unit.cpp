#include "reports/unit.h"

#include "reports/exchange.h"
#include "virtualunit/state/propertyTable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <map>
#include <set>

namespace reports {

namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr std::int32_t ok = 0;
constexpr std::int32_t notSupported = 2;
constexpr std::int32_t noSuchChannel = 6;

/** What a unit needs for an operation; without it the operation isn't supported. */
struct Need {
    const char *equipment; ///< a value of the unit
    const char *operation; ///< its beginning, so that one row does for a family
};

// Equipment that the report names comes first: with it known, the rest is told apart.
constexpr Need needs[] = {
    {"Hardware.hasDisplay", "Backlight_get"},
    {"Hardware.hasDisplay", "Power_getBLPowerStatus"},
    {"Hardware.hasTouchscreen", "Touch_get"},
    {"Hardware.canCount", "Can_get"},
    {"Hardware.canCount", "Config_getCanStartupPowerConfig"},
    {"Hardware.canCount", "Power_getCanPowerStatus"},
    {"Hardware.videoCount", "Config_getVideoStartupPowerConfig"},
    {"Hardware.videoCount", "Power_getVideoPowerStatus"},
    {"Telematics.available", "Hardware_getAddon"},
    {"Telematics.available", "Telematics_getG"},
    {"Telematics.available", "Telematics_getW"},
    {"Hardware.hasGsm", "Telematics_getGPRS"},
    {"Hardware.hasWlan", "Telematics_getWLAN"},
    {"Hardware.hasGps", "Telematics_getGPSAntennaStatus"},
    {"Feature.buzzer", "Buzzer_get"},
    {"Feature.externalFan", "Config_getExtFanStartupPowerConfig"},
    {"Feature.externalFan", "Power_getExtFanPowerStatus"},
    {"Feature.heater", "Config_getHeatingTempLimit"},
    {"Feature.suspend", "Config_getSuspendMaxTime"},
    {"Feature.powerOnStartup", "Config_getPowerOnStartup"},
    {"Feature.buttonActions", "Config_getLongButtonPressAction"},
    {"Feature.buttonActions", "Config_getShortButtonPressAction"},
    {"Feature.ledDimming", "Backlight_getLedDimming"},
    {"Feature.automaticBacklight", "Backlight_getAutomaticBL"},
    {"Feature.frontLed", "FrontLED_get"},
    {"Feature.ledStartup", "FrontLED_getEnabledDuringStartup"},
    {"Feature.touchProfiles", "Touch_get"},
    {"Feature.minMaxTemp", "Diagnostics_getMinMaxTemp"},
};

/** What the virtual unit says for its words of start-up reason and hardware faults. */
constexpr Word startupReasons[] = {{0, "Unknown startup reason"}, {1, "Front button"},
    {2, "OnOff signal"}, {3, "Power applied"}, {4, "Restart by the operating system"},
    {5, "Resume from suspend by front button"}, {6, "Resume from suspend by OnOff signal"},
    {7, "RTC alarm"}, {8, "Watchdog"}, {9, "Restart after overtemperature"}};
constexpr std::string_view hardwareFaults[] = {"RTC battery low", "Main board temperature sensor",
    "Processor module temperature sensor", "Input voltage out of range", "5V supply", "3.3V supply",
    "12V supply", "Video supply", "Fan", "Heater", "Light sensor", "Backlight", "Front controller",
    "FPGA configuration", "Unknown fault 14", "Unknown fault 15"};

/** By the kind that a sensor has in the unit. */
constexpr std::string_view sensorNames[] = {"JIDA CPU temp", "JIDA box temp",
    "JIDA environment temp", "JIDA board temp", "JIDA backplane temp", "JIDA chipsets temp",
    "JIDA video temp", "JIDA other temp", "JIDA unknown temp"};

/** Whether a unit can hold it. One value that it can't would have the whole profile refused. */
bool canHold(std::string_view name, const OrderedJson &value)
{
    using virtualunit::Kind;
    const std::size_t index = virtualunit::findProperty(name);
    if (index == virtualunit::propertyCount)
        return false;
    const auto &property = virtualunit::properties[index];
    if (property.isText() != value.is_string())
        return false;
    if (property.isText()) {
        const auto &text = value.get_ref<const std::string &>();
        const auto starts = [](char byte) {
            return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
        };
        if (property.kind == Kind::Text)
            return text.find('\0') == std::string::npos &&
                   double(std::count_if(text.begin(), text.end(), starts)) <= property.reports.high;
        const auto numbers = versionNumbers(text);
        return numbers.size() == 4 && !text.starts_with('v') &&
               *std::max_element(numbers.begin(), numbers.end()) <= property.reports.high;
    }
    if (value.is_boolean())
        return property.kind == Kind::Flag;
    return (value.is_number_integer() || property.kind == Kind::Real) &&
           virtualunit::within(property.reports, value.get<double>());
}

bool startsWith(std::string_view text, const char *start)
{
    return text.starts_with(start);
}

bool isSilentWhenUnsupported(const Item &item)
{
    return item.group != "Battery" && item.shape != Shape::Plain && item.shape != Shape::Tight &&
           item.shape != Shape::Sentence && item.shape != Shape::Failure;
}

std::optional<std::int32_t> wordValue(std::span<const Word> words, std::string_view text)
{
    for (const Word &word : words) {
        if (word.text == text)
            return word.value;
    }
    return {};
}

std::optional<int> faultBits(std::string_view text)
{
    if (text == "No error")
        return 0;
    int bits = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(", "), text.size());
        const auto *fault =
            std::find(std::begin(hardwareFaults), std::end(hardwareFaults), text.substr(0, end));
        if (fault == std::end(hardwareFaults))
            return {};
        bits |= 1 << (fault - std::begin(hardwareFaults));
        text.remove_prefix(std::min(end + 2, text.size()));
    }
    return bits;
}

/** Seconds since 1970 of a local time as the report writes it. */
std::optional<std::int64_t> localSeconds(std::string_view text)
{
    std::tm time{};
    if (std::sscanf(isoTime(text).c_str(), "%d-%d-%dT%d:%d:%d", &time.tm_year, &time.tm_mon,
            &time.tm_mday, &time.tm_hour, &time.tm_min, &time.tm_sec) != 6)
        return {};
    time.tm_year -= 1900;
    time.tm_mon -= 1;
    time.tm_isdst = -1;
    const std::tm wanted = time;
    const std::time_t seconds = std::mktime(&time);
    if (seconds == -1 && wanted.tm_year != 69)
        return {};
    return seconds;
}

class Maker
{
public:
    explicit Maker(const Report &from)
        : report(from)
    {
        collect();
    }

    UnitProfile make()
    {
        for (const Item &item : items()) {
            if (!item.property.empty() && item.section != railSection)
                addValue(item);
        }
        addSensors();
        addRails();
        addBattery();
        addEquipment();
        addFaults();
        std::string name = report.name();
        OrderedJson json{{"description", "the unit of the report " + name}, {"values", values}};
        if (!faults.empty())
            json["faults"] = faults;
        return {json.dump(4, ' ', false, OrderedJson::error_handler_t::replace) + "\n", untold()};
    }

private:
    /** What the lines of one operation say. */
    struct Observed {
        bool told = false; ///< there is a line, or one is missing where one would be
        bool works = false;
        bool anyFailure = false; ///< the line doesn't tell the code
        std::int32_t code = ok;
    };

    void collect()
    {
        for (const Item &item : items()) {
            if (item.operation.empty())
                continue;
            Observed &seen = observed[std::string(item.operation)];
            const Entry *const entry = report.find(item.section, item.group, item.name);
            if (entry) {
                seen.told = true;
                seen.works = seen.works || !entry->failed;
                if (entry->failed && seen.code == ok) {
                    seen.anyFailure = !entry->error;
                    seen.code = entry->error.value_or(notAvailable);
                }
            } else if (isSilentWhenUnsupported(item) && endsBehind(item.section)) {
                seen.told = true;
            }
        }
        // The filter is asked for only behind parameters that could be read, and then hides them.
        if (observed["Backlight_getAutomaticBLFilter"].code != ok)
            observed["Backlight_getAutomaticBLParams"] = {true, true, false, ok};
        for (auto &[operation, seen] : observed) {
            if (seen.told && !seen.works && seen.code == ok)
                seen.code = notSupported;
        }
    }

    /** Whether lines that aren't there are absent rather than lost. */
    bool endsBehind(std::string_view section) const
    {
        const auto place = [](std::string_view title) {
            return std::find(sections().begin(), sections().end(), title) - sections().begin();
        };
        const auto &entries = report.entries();
        const bool present = std::any_of(entries.begin(), entries.end(),
            [&](const Entry &entry) { return entry.section == section; });
        return report.facts().complete ||
               (present && std::any_of(entries.begin(), entries.end(), [&](const Entry &entry) {
                   return place(entry.section) > place(section);
               }));
    }

    /** All values of a unit but those that are set, and equipment that shows by what it does. */
    std::vector<std::string> untold() const
    {
        std::vector<std::string> names;
        for (const auto &property : virtualunit::properties) {
            std::string name(property.name);
            if (!values.contains(name) && !shown.contains(name))
                names.push_back(std::move(name));
        }
        return names;
    }

    void addValue(const Item &item)
    {
        const Entry *const entry = report.find(item.section, item.group, item.name);
        if (entry && !entry->failed)
            setValue(item, *entry);
    }

    void set(std::string_view property, OrderedJson value)
    {
        if (canHold(property, value))
            values[std::string(property)] = std::move(value);
    }

    static std::string utf8(std::string_view latin1)
    {
        std::string text;
        appendUtf8(text, latin1);
        return text;
    }

    void setValue(const Item &item, const Entry &entry)
    {
        const std::string_view property = item.property;
        if (item.section == softwareSection || property == "Battery.swVersion")
            set(property, utf8(entry.text.substr(entry.text.starts_with('v') ? 1 : 0)));
        else if (property == "Diagnostics.startupReason")
            setOptional(property, wordValue(startupReasons, entry.text));
        else if (property == "Diagnostics.hwErrorStatus")
            setOptional(property, faultBits(entry.text));
        else if (item.name == initialTime)
            setOptional(property, localSeconds(entry.text));
        else if (item.section == boardSection)
            setBoard(property, entry.text);
        else if (!item.words.empty() && entry.number.empty())
            setWord(item, entry.text);
        else if (!entry.number.empty())
            setNumber(property, entry.number);
        else if (item.shape == Shape::Text || item.group == "Battery")
            setText(property, entry.text);
    }

    template <typename T>
    void setOptional(std::string_view property, std::optional<T> value)
    {
        if (value)
            set(property, *value);
    }

    void setText(std::string_view property, std::string_view text)
    {
        const std::size_t index = virtualunit::findProperty(property);
        if (index < virtualunit::propertyCount && virtualunit::properties[index].isText())
            set(property, utf8(text));
    }

    void setNumber(std::string_view property, std::string_view text)
    {
        const auto told = numberOf(text);
        if (!told)
            return;
        double number = *told;
        // The report takes this one for a signed number.
        if (property == "Config.extOnOffSigTrigTime" && number < 0)
            number += 4294967296.0;
        constexpr double exact = 9e15; // beyond it not every whole number is one of these
        if (property == "Backlight.softTransitions" || property == "Buzzer.trigger")
            set(property, number != 0);
        else if (std::abs(number) < exact && number == std::trunc(number))
            set(property, std::int64_t(number));
        else
            set(property, number);
    }

    void setWord(const Item &item, std::string_view text)
    {
        const auto value = wordValue(item.words, text);
        if (value && item.property.starts_with("Hardware.has"))
            set(item.property, *value != 0);
        else if (value)
            set(item.property, *value);
        else if (text == "Undefined value")
            set(item.property, 99); // any that has no word
    }

    void setBoard(std::string_view property, std::string_view text)
    {
        const std::string value(text);
        int year = 0;
        int month = 0;
        int day = 0;
        if (property == "CpuBoard.manufacturingDate") {
            if (std::sscanf(value.c_str(), "%4d.%2d.%2d", &year, &month, &day) != 3)
                return;
            std::array<char, 48> date{};
            std::snprintf(date.data(), date.size(), "%04d-%02d-%02d", year, month, day);
            set(property, date.data());
        } else if (property == "CpuBoard.productRevision") {
            if (value.size() == 3)
                set(property, utf8(value.substr(0, 1) + value.substr(2)));
        } else if (property.ends_with("Revision")) {
            setNumber(property, text);
        } else {
            set(property, utf8(text));
        }
    }

    void addSensors()
    {
        int count = 0;
        for (const Entry &entry : report.entries()) {
            const auto *name =
                std::find(std::begin(sensorNames), std::end(sensorNames), entry.name);
            if (name == std::end(sensorNames) || entry.number.empty())
                continue;
            if (count < 8) {
                set("Diagnostics.pmKind" + std::to_string(count), name - std::begin(sensorNames));
                setNumber("Diagnostics.pmTemp" + std::to_string(count), entry.number);
            }
            ++count;
        }
        if (endsBehind(historySection))
            set("Diagnostics.pmSensorCount", std::min(count, 64));
    }

    /** One operation for all rails: what one of them lacks is the unit's, what all lack is a fault.
     */
    void addRails()
    {
        bool anyOfNewer = false;
        for (const Item &item : items()) {
            if (item.section != railSection)
                continue;
            const Entry *const entry = report.find(item.section, item.group, item.name);
            const int channel = std::stoi(std::string(item.property.substr(11)));
            anyOfNewer = anyOfNewer || (entry && channel > 16);
            if (entry && !entry->failed)
                setValue(item, *entry);
        }
        if (observed["Adc_getVoltage"].works)
            set("Feature.moreRails", anyOfNewer);
    }

    void addBattery()
    {
        values.erase("Battery.available");
        const Entry *const none = report.find(settingsSection, "Battery", "External battery");
        if (none) {
            const Entry *const backup = report.find(railSection, "", "Voltage 24V Backup");
            const bool rails = observed["Adc_getVoltage"].works;
            if (rails && !backup)
                set("Feature.battery", false);
            else if (rails && !backup->failed)
                faults["Battery_isAvailable"] = notAvailable;
            else
                set("Battery.available", false);
            return;
        }
        if (!report.find(settingsSection, "Battery", "Power source"))
            return;
        set("Battery.available", true);
        shown.insert("Feature.battery");
        const auto tells = [&](const char *name) {
            return report.find(settingsSection, "Battery", name) != nullptr;
        };
        // A state without a sentence leaves no line, and an idle battery no line before its own.
        if (!tells("Battery charging status"))
            set("Battery.chargingStatus", 99);
        if (!tells("Battery HW error status") && tells("Battery HW version"))
            set("Battery.hwErrorStatus", 99);
    }

    bool isMissing(std::string_view equipment) const
    {
        const auto value = values.find(std::string(equipment));
        return value != values.end() &&
               (*value == false || (value->is_number() && value->get<double>() == 0));
    }

    bool isExplained(const std::string &operation) const
    {
        return std::any_of(std::begin(needs), std::end(needs), [&](const Need &need) {
            return startsWith(operation, need.operation) && isMissing(need.equipment);
        });
    }

    /** Equipment that the report doesn't name is missing when nothing that needs it works. */
    void addEquipment()
    {
        const bool addonWorks = observed["Hardware_getAddonPcbSerial"].works ||
                                observed["Hardware_getAddonArticleNumber"].works ||
                                observed["Hardware_getAddonManufacturingDate"].works ||
                                observed["Hardware_getAddonHardwareVersion"].works;
        if (addonWorks && isMissing("Telematics.available"))
            set("Telematics.available", 2); // there, and yet not what the report takes for there
        std::string_view last;
        for (const Need &need : needs) {
            if (need.equipment == last || values.contains(need.equipment))
                continue;
            last = need.equipment;
            bool works = false;
            bool lacking = false;
            for (const auto &[operation, seen] : observed) {
                if (!needsIt(operation, need.equipment) || !seen.told || isExplained(operation))
                    continue;
                works = works || seen.works || seen.code == noSuchChannel;
                lacking = lacking || seen.code == notSupported;
            }
            if (works)
                shown.emplace(need.equipment);
            else if (lacking)
                setMissing(need.equipment);
        }
        addChannels();
        addStorage("", "Feature.storage");
        addStorage("2", "Feature.secondStorage");
        const Observed &antenna = observed["Telematics_getGPSAntennaStatus"];
        if (antenna.told && antenna.code == notAvailable)
            set("Telematics.gpsPowerStatus", 0);
    }

    static bool needsIt(const std::string &operation, const char *equipment)
    {
        return std::any_of(std::begin(needs), std::end(needs), [&](const Need &need) {
            return std::string_view(need.equipment) == equipment &&
                   startsWith(operation, need.operation);
        });
    }

    void setMissing(std::string_view equipment)
    {
        if (equipment.ends_with("Count") || equipment == "Telematics.available")
            set(equipment, 0);
        else
            set(equipment, false);
    }

    /** Where the number of channels isn't told, it is that of those which answer. */
    void addChannels()
    {
        if (values.contains("Hardware.canCount"))
            return;
        int count = 0;
        for (int channel = 1; channel <= 4; ++channel) {
            for (const char *what : {" Baud rate", " frame type"}) {
                const Entry *const entry =
                    report.find(settingsSection, "CAN", "CAN" + std::to_string(channel) + what);
                if (entry && !entry->failed)
                    count = channel;
            }
        }
        if (count > 0)
            set("Hardware.canCount", count);
    }

    /** The first device's serial number and lifetime don't tell why they are missing. */
    void addStorage(const std::string &number, const char *feature)
    {
        const Observed &serial = observed["Smart_getDeviceSerial" + number];
        const Observed &lifetime = observed["Smart_getRemainingLifetime" + number];
        const Observed &time = observed["Smart_getInitialTime" + number];
        const auto lacks = [](const Observed &seen) {
            return seen.told && !seen.works && (seen.code == notSupported || seen.anyFailure);
        };
        const bool second = !number.empty();
        const bool all = lacks(serial) && lacks(lifetime) && time.told && !time.works &&
                         time.code == notSupported;
        if (serial.works || lifetime.works || time.works)
            shown.insert(feature);
        else if (all && !(second && (serial.anyFailure || lifetime.anyFailure)))
            set(feature, false);
    }

    void addFaults()
    {
        for (const auto &[operation, seen] : observed) {
            // Sensors and battery have been looked at.
            if (!seen.told || operation == "Battery_isAvailable" ||
                operation == "Diagnostics_getPMTemp")
                continue;
            const bool storage = startsWith(operation, "Smart_");
            const bool without =
                storage &&
                isMissing(operation.ends_with('2') ? "Feature.secondStorage" : "Feature.storage");
            std::int32_t expected = isExplained(operation) || without ? notSupported : ok;
            if (operation == "Telematics_getGPSAntennaStatus" && expected == ok &&
                isMissing("Telematics.gpsPowerStatus"))
                expected = notAvailable;
            const std::int32_t code = seen.works ? ok : seen.code;
            const bool same = code == expected || (without && seen.anyFailure);
            if (!same && code != ok)
                faults[operation] = code;
        }
    }

    const Report &report;
    std::map<std::string, Observed> observed; ///< by operation
    OrderedJson values = OrderedJson::object();
    OrderedJson faults = OrderedJson::object();
    std::set<std::string> shown; ///< equipment that is there as on a fresh unit
};

} // namespace

UnitProfile unitProfile(const Report &report)
{
    return Maker(report).make();
}

} // namespace reports
