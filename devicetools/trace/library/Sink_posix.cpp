#include "devicetools/trace/library/Sink.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace trace {

namespace {

class Descriptor : public Sink
{
public:
    explicit Descriptor(int opened)
        : handle(opened)
    {}
    ~Descriptor() override { ::close(handle); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    std::string append(std::string_view line) override
    {
        while (!line.empty()) {
            const auto written = ::write(handle, line.data(), line.size());
            if (written < 0 && errno != EINTR)
                return std::strerror(errno);
            line.remove_prefix(written < 0 ? 0 : std::size_t(written));
        }
        return {};
    }

private:
    int handle;
};

} // namespace

std::unique_ptr<Sink> Sink::open(const std::string &file, std::string &error)
{
    const int handle = file.empty() ? ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                                    : ::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (handle >= 0)
        return std::make_unique<Descriptor>(handle);
    error = std::strerror(errno);
    return nullptr;
}

} // namespace trace
