#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <atomic>

namespace boards {

struct BoardDate;

/**
 * The one CPU board of the unit, as a vendor's library offers it: the library is initialised, the
 * board opened, asked and closed. Results are non-zero on success. Any thread; null pointers and
 * numbers that were never given out are refused.
 */
class VirtualBoard
{
public:
    /** @param name by which the vendor calls the board. */
    explicit constexpr VirtualBoard(std::u16string_view name)
        : boardName(name)
    {}

    std::int32_t initialise();
    std::int32_t uninitialise();
    std::int32_t openByName(const char16_t *name, std::uint32_t *handle) const;
    /** The board of that number; there is the number 0 only. */
    std::int32_t open(std::uint32_t number, std::uint32_t *handle) const;
    std::int32_t close(std::uint32_t handle) const { return isOpen(handle) ? 1 : 0; }

    /** Fills the caller's record, which may lie at any address, by fill(record), if its first
     *  field holds its size. Nothing is written when fill returns false. */
    template <typename Record, typename Fill>
    std::int32_t getInfo(std::uint32_t handle, void *out, Fill fill) const
    {
        std::uint32_t size = 0;
        if (!isOpen(handle) || !out)
            return 0;
        std::memcpy(&size, out, sizeof size);
        Record record{};
        record.size = size;
        if (size != sizeof record || !fill(record))
            return 0;
        std::memcpy(out, &record, sizeof record);
        return 1;
    }

private:
    bool isOpen(std::uint32_t handle) const;

    std::u16string_view boardName;
    std::atomic<int> users = 0;
};

/** The unit's values of the board, "CpuBoard." before the name. Each returns false, and leaves out
 *  as it is, when the unit can't be asked or the value makes no sense. */
bool readText(const char *name, char16_t *out, std::size_t size);
bool readNumber(const char *name, std::uint16_t &out);
/** A date as "2022-01-24". */
bool readDate(const char *name, BoardDate &out);

/** A text that is too long is cut, never within a character. */
template <std::size_t Size>
bool readText(const char *name, char16_t (&out)[Size])
{
    return readText(name, out, Size);
}

} // namespace boards
