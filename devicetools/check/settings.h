#pragma once

#include "devicetools/check/Session.h"

#include <optional>
#include <string>
#include <vector>

namespace check {

/** A value that can be set, as the contract describes it. */
struct SettingValue {
    std::size_t setPlace;      ///< of the setter's argument
    std::size_t getPlace;      ///< of the getter's
    std::vector<double> legal; ///< some, the ends of the range among them; empty if it has no range
    std::vector<double> illegal; ///< beyond the range, as far as the type goes
};

/** What one operation sets and another reads: its values, for one channel where there are several.
 */
struct Setting {
    Question get;
    Question set; ///< with the channel, the values to be filled in
    std::vector<SettingValue> values;
    bool switchesPower = false; ///< of something that runs
    /** As in messages: "Can_setBaudrate(2)". */
    std::string name;
};

/** All that the library has and answers for now. Made from the contract's names and comments. */
std::vector<Setting> settingsOf(Session &session);

/** What the setting's values are now; nullopt if it can't be read. */
std::optional<std::vector<double>> read(Session &session, const Setting &setting);
/** Sets all values at once. */
DeviceCode write(Session &session, const Setting &setting, const std::vector<double> &values);

/** Values to try beside that, for one of the setting's values that is there at present. */
std::vector<double> candidates(const Setting &setting, std::size_t value, double present);

/** Equal, as far as a device that counts in steps can be. */
bool isSame(const Setting &setting, std::size_t value, double one, double other);

/**
 * Remembers what settings are, where the watching process finds it too, and puts them back at its
 * end. What can't be put back is a failure of the test.
 */
class Restorer
{
public:
    /** Remembers these. Settings without an answer are left out of `settings`. */
    Restorer(Session &watched, std::vector<Setting> &settings);
    /** Remembers nothing yet. */
    explicit Restorer(Session &watched);
    Restorer(const Restorer &) = delete;
    Restorer &operator=(const Restorer &) = delete;
    ~Restorer();

    /** A call that is made at the end, before those that were given earlier. */
    void remember(const Question &call);
    /** Leaves it to the test's next process, which the watching one starts for it. */
    void leaveToNext() { isLeft = true; }

private:
    Session &session;
    bool isLeft = false;
};

/** Makes the calls that the channel has, the last first, and forgets them. Of settings, those alone
 *  that are not as they were. For the process that comes after one that crashed, too. */
void restore(Session &session);

} // namespace check
