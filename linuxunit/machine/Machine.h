#pragma once

#include <cstddef>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace linuxunit {

/**
 * What the integrator says of this machine: /etc/vornaux/unit.json, or the file that VORNAUX_CONFIG
 * names. A section that isn't there leaves its family to what is found; `false` says that the
 * machine hasn't got it; an object says what it is. The file has been held to unit.schema.json, so
 * who reads a section may rely on its types. Constant; any thread.
 */
class Machine
{
public:
    /** The machine as the file says it now; read anew when the file has changed. Without a file all
     *  is found. A file that is wrong is a Failure with its line and the reason. */
    static std::shared_ptr<const Machine> present();
    /** As present() from a text; `name` is what failures call it. */
    static std::shared_ptr<const Machine> parse(const std::string &text, const std::string &name);

    Machine();
    ~Machine();

    /** Whether the section says that the machine hasn't got it. */
    bool denies(std::string_view name) const;
    /** Throws 2 if the section says that the machine hasn't got it.
     *  @return the section, null (as JSON) if there is none */
    const nlohmann::json &section(std::string_view name) const;
    /** What a section has of that name, null (as JSON) if the section or the name isn't there. */
    const nlohmann::json &part(std::string_view section, std::string_view name) const;
    /** The text of a section, empty if the section or the text isn't there. */
    std::string text(std::string_view section, std::string_view name) const;

private:
    std::unique_ptr<nlohmann::json> whole;
};

inline constexpr std::size_t longestMachineFile = 1U << 20U; ///< bytes

/** Path of the file, whether it exists or not. */
std::string machineFile();

/** The schema of the file, as it comes with the library. */
extern const char *const machineSchema;

} // namespace linuxunit
