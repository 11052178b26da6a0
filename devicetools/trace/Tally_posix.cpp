#include "devicetools/trace/Tally.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace trace {

std::unique_ptr<Tally> Tally::open(const std::filesystem::path &file)
{
    const int handle = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (handle < 0)
        return nullptr;
    void *place = MAP_FAILED;
    if (::ftruncate(handle, sizeof(Counts)) == 0)
        place = ::mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED, handle, 0);
    ::close(handle);
    if (place == MAP_FAILED)
        return nullptr;
    return std::unique_ptr<Tally>(new Tally(static_cast<Counts *>(place)));
}

Tally::~Tally()
{
    ::munmap(counts, sizeof *counts);
}

} // namespace trace
