#include "virtualunit/firmware/IntelHex.h"

#include "virtualunit/state/codes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

namespace virtualunit {

namespace {

constexpr std::uint8_t erased = 0xFF;
constexpr std::uint64_t segmentSize = 0x10000;
constexpr std::uint64_t addressRange = 0x100000000;

/** What is wrong with one line. */
struct Fault {
    Code code;
    const char *reason;
};

/** Data bytes that follow each other without a gap. */
struct Run {
    std::uint32_t address;
    std::uint32_t offset; ///< of the first byte in the reader's data
    std::uint32_t size;
};

/** One line, decoded: length, address, type and data; the checksum is done with. */
struct Record {
    std::array<std::uint8_t, 255 + 5> raw;
    std::size_t dataSize() const { return raw[0]; }
    std::uint32_t address() const { return word(1); }
    std::uint8_t type() const { return raw[3]; }
    const std::uint8_t *data() const { return &raw[4]; }
    std::uint32_t word(std::size_t at) const { return std::uint32_t(raw[at] << 8 | raw[at + 1]); }
};

int hexDigit(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

std::optional<Fault> decode(std::string_view line, Record &record)
{
    if (line.empty() || line.front() != ':')
        return Fault{FileMalformed, "a record must begin with a colon"};
    line.remove_prefix(1);
    const auto count = line.size() / 2;
    if (line.size() % 2 != 0 || count < 5 || count > record.raw.size())
        return Fault{FileMalformed, "a record of an impossible length"};
    unsigned sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const int high = hexDigit(line[2 * i]);
        const int low = hexDigit(line[2 * i + 1]);
        if (high < 0 || low < 0)
            return Fault{FileMalformed, "a character that is no hexadecimal digit"};
        record.raw[i] = std::uint8_t(high << 4 | low);
        sum += record.raw[i];
    }
    if (record.dataSize() + 5 != count)
        return Fault{FileMalformed, "a record whose length field is wrong"};
    if ((sum & 0xFF) != 0)
        return Fault{FileChecksum, "a record whose checksum is wrong"};
    return std::nullopt;
}

class Reader
{
public:
    explicit Reader(std::size_t size)
        : memorySize(size)
    {}

    std::optional<Fault> take(const Record &record)
    {
        // Data has any length, an empty one included; every other type has exactly one.
        constexpr std::size_t lengths[] = {0, 0, 2, 4, 2, 4};
        if (record.type() >= std::size(lengths))
            return Fault{FileMalformed, "a record of an unknown type"};
        if (record.type() != 0 && record.dataSize() != lengths[record.type()])
            return Fault{FileMalformed, "a record whose length does not suit its type"};
        switch (record.type()) {
        case 0:
            return takeData(record);
        case 1:
            ended = true;
            break;
        case 2:
            linear = false;
            base = std::uint64_t(record.word(4)) << 4;
            break;
        case 4:
            linear = true;
            base = std::uint64_t(record.word(4)) << 16;
            break;
        default: // where the controller starts to run is of no interest to its memory
            break;
        }
        return std::nullopt;
    }

    bool hasEnded() const { return ended; }

    /** The runs as one block; fails when two of them overlap or they don't fit in the memory. */
    std::optional<Fault> assemble(FirmwareImage &image)
    {
        if (runs.empty())
            return Fault{FileMalformed, "no data"};
        std::sort(runs.begin(), runs.end(),
            [](const Run &a, const Run &b) { return a.address < b.address; });
        for (std::size_t i = 1; i < runs.size(); ++i) {
            if (end(runs[i - 1]) > runs[i].address)
                return Fault{FileMalformed, "an address that is given twice"};
        }
        const auto size = end(runs.back()) - runs.front().address;
        if (size > memorySize)
            return Fault{FileTooLarge, "more than the controller's memory takes"};
        image.address = runs.front().address;
        image.bytes.assign(std::size_t(size), erased);
        for (const auto &run : runs) {
            const auto from = std::next(data.begin(), std::ptrdiff_t(run.offset));
            std::copy_n(from, run.size,
                std::next(image.bytes.begin(), std::ptrdiff_t(run.address - image.address)));
        }
        return std::nullopt;
    }

private:
    static std::uint64_t end(const Run &run) { return std::uint64_t(run.address) + run.size; }

    std::optional<Fault> takeData(const Record &record)
    {
        if (record.dataSize() == 0)
            return std::nullopt;
        const auto address = base + record.address();
        const auto limit = linear ? addressRange : base + segmentSize;
        if (address + record.dataSize() > limit)
            return Fault{FileMalformed, "data beyond the end of its segment"};
        if (data.size() + record.dataSize() > memorySize)
            return Fault{FileTooLarge, "more than the controller's memory takes"};
        const auto size = std::uint32_t(record.dataSize());
        if (!runs.empty() && end(runs.back()) == address)
            runs.back().size += size;
        else
            runs.push_back({std::uint32_t(address), std::uint32_t(data.size()), size});
        data.insert(data.end(), record.data(), std::next(record.data(), record.raw[0]));
        return std::nullopt;
    }

    std::size_t memorySize;
    std::uint64_t base = 0;
    bool linear = false;
    bool ended = false;
    std::vector<Run> runs;
    std::vector<std::uint8_t> data;
};

/** Takes the next line, without its end, off the text. */
std::string_view takeLine(std::string_view &text)
{
    const auto length = text.find('\n');
    auto line = text.substr(0, length);
    text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

IntelHexResult failure(const Fault &fault, std::size_t line)
{
    return {fault.code, line, fault.reason, {}};
}

} // namespace

std::uint64_t FirmwareImage::digest() const
{
    constexpr std::uint64_t prime = 0x100000001B3;
    std::uint64_t digest = 0xCBF29CE484222325;
    for (unsigned shift = 0; shift < 32; shift += 8)
        digest = (digest ^ (address >> shift & 0xFF)) * prime;
    for (const auto byte : bytes)
        digest = (digest ^ byte) * prime;
    return digest;
}

IntelHexResult readIntelHex(std::string_view text, std::size_t memorySize)
{
    Reader reader(memorySize);
    Record record{};
    std::size_t number = 0;
    while (!text.empty()) {
        ++number;
        const auto line = takeLine(text);
        if (reader.hasEnded()) {
            if (line.empty())
                continue;
            return failure({FileMalformed, "something after the end record"}, number);
        }
        auto fault = decode(line, record);
        if (!fault)
            fault = reader.take(record);
        if (fault)
            return failure(*fault, number);
    }
    if (!reader.hasEnded())
        return failure({FileMalformed, "no end record"}, number);
    IntelHexResult result;
    if (const auto fault = reader.assemble(result.image))
        return failure(*fault, 0);
    return result;
}

} // namespace virtualunit
