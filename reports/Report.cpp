#include "reports/Report.h"

#include <algorithm>

namespace reports {

namespace {

constexpr std::size_t keptOfLog = std::size_t{1} << 16;
constexpr std::size_t keptUnknown = 10000;

} // namespace

void LogFile::add(std::string_view piece)
{
    constexpr std::uint64_t prime = 1099511628211U; // FNV-1a
    for (const char character : piece)
        fingerprint = (fingerprint ^ static_cast<unsigned char>(character)) * prime;
    lines += std::size_t(std::count(piece.begin(), piece.end(), '\n'));
    bytes += piece.size();
    end += piece;
    if (end.size() < 2 * keptOfLog)
        return;
    const std::size_t line = end.find('\n', end.size() - keptOfLog);
    end.erase(0, line == std::string::npos ? end.size() - keptOfLog : line + 1);
}

Report::Report(const Input &input)
    : file(input.name)
{
    Content content(input);
    if (content.isEmpty())
        throw Trouble{file + ": is empty"};
    told = content.read(*this);
    if (told.known == 0)
        throw Trouble{file + ": is no system report"};
}

const Entry *Report::find(
    std::string_view section, std::string_view group, std::string_view name) const
{
    const auto found = std::find_if(list.begin(), list.end(), [&](const Entry &entry) {
        return entry.name == name && entry.group == group && entry.section == section;
    });
    return found == list.end() ? nullptr : &*found;
}

std::string_view Report::keep(std::string_view text)
{
    return texts.emplace_back(text);
}

void Report::entry(const Entry &entry)
{
    if (entry.kind == Entry::Kind::Layout)
        return;
    if (entry.kind == Entry::Kind::Log)
        logList.push_back({std::string(entry.name), 0, 0, 0, {}});
    if (entry.kind == Entry::Kind::Unknown && ++unknown > keptUnknown)
        return;
    Entry &kept = list.emplace_back(entry);
    kept.text = keep(entry.text);
    kept.tail = {};
    if (!entry.number.empty()) // a part of the text
        kept.number = kept.text.substr(0, entry.number.size());
    if (!entry.item) {
        kept.section = keep(entry.section);
        kept.group = keep(entry.group);
        kept.name = keep(entry.name);
    }
}

void Report::logText(std::string_view piece)
{
    logList.back().add(piece);
}

} // namespace reports
