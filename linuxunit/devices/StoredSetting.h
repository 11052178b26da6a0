#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace linuxunit {

/**
 * A setting that holds across restarts, in a file of the driver that keeps it: the section `config`
 * names both. Linux itself keeps none. It is what the file says at each call; 18 while the file
 * isn't there. One thread at a time.
 */
class StoredSetting
{
public:
    /** Throws 2 for a setting that the section doesn't name. */
    explicit StoredSetting(const char *key);

    /** Whether the section names it; 2 for a section that is false. */
    static bool isMapped(const char *key);

    /** In the contract's unit, which a unit of the file has `factor` of. UnexpectedContent for one
     *  beyond the limits. */
    double number(double lowest, double highest) const;
    /** 5 for a value beyond the limits. */
    void setNumber(double value, double lowest, double highest) const;

    /** One of the contract's numbers from `first` to `last`: the file has the words for them, or
     * the numbers themselves. */
    std::int32_t choice(std::int32_t first, std::int32_t last) const;
    void setChoice(std::int32_t value, std::int32_t first, std::int32_t last) const;

private:
    std::string path() const;

    std::string pattern; ///< of the file; "*" stands for what changes between starts
    double factor;
    std::vector<std::string> words;
};

} // namespace linuxunit
