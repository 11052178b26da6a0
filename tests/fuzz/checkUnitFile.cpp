#include "linuxunit/calls/Failure.h"
#include "linuxunit/machine/Machine.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/require.h"

#include <nlohmann/json.hpp>

#include <string>

void checkUnitFile(const std::uint8_t *bytes, std::size_t size)
{
    using namespace linuxunit;
    const std::string text(reinterpret_cast<const char *>(bytes), size);
    try {
        const auto machine = Machine::parse(text, "unit.json");
        // What is held to the schema can be relied on.
        for (const char *section : {"backlight", "adc", "temperatures", "frontLed", "hardware"}) {
            try {
                REQUIRE(
                    machine->section(section).is_object() || machine->section(section).is_null());
                static_cast<void>(machine->text(section, "device"));
            } catch (const Failure &failure) {
                REQUIRE(failure.kind == NotSupported);
            }
        }
    } catch (const Failure &failure) {
        REQUIRE(failure.kind == ConfigurationWrong);
        REQUIRE(failure.sentence.starts_with("unit.json, line "));
    }
}
