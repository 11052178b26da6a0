#include "devicetools/trace/Tally.h"

#include <windows.h>

namespace trace {

std::unique_ptr<Tally> Tally::open(const std::filesystem::path &file)
{
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    const HANDLE mapping =
        CreateFileMappingW(handle, nullptr, PAGE_READWRITE, 0, sizeof(Counts), nullptr);
    CloseHandle(handle);
    if (!mapping)
        return nullptr;
    void *place = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(Counts));
    CloseHandle(mapping);
    return place ? std::unique_ptr<Tally>(new Tally(static_cast<Counts *>(place))) : nullptr;
}

Tally::~Tally()
{
    UnmapViewOfFile(counts);
}

} // namespace trace
