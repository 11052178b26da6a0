#include "devicetools/trace/library/Sink.h"

#include "platform/system.h"

#include <system_error>

#include <windows.h>

namespace trace {

namespace {

std::string lastError()
{
    return std::system_category().message(int(GetLastError()));
}

class Descriptor : public Sink
{
public:
    explicit Descriptor(HANDLE opened)
        : handle(opened)
    {}
    ~Descriptor() override { CloseHandle(handle); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    std::string append(std::string_view line) override
    {
        while (!line.empty()) {
            DWORD written = 0;
            if (!WriteFile(handle, line.data(), DWORD(line.size()), &written, nullptr))
                return lastError();
            line.remove_prefix(written);
        }
        return {};
    }

private:
    HANDLE handle;
};

} // namespace

std::unique_ptr<Sink> Sink::open(const std::string &file, std::string &error)
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    if (file.empty()) {
        const HANDLE self = GetCurrentProcess();
        if (!DuplicateHandle(self, GetStdHandle(STD_ERROR_HANDLE), self, &handle, 0, FALSE,
                DUPLICATE_SAME_ACCESS))
            handle = INVALID_HANDLE_VALUE;
    } else {
        // With this right alone the system itself moves each write to the file's end.
        handle = CreateFileW(platform::pathOf(file).c_str(), FILE_APPEND_DATA,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
            FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    if (handle != INVALID_HANDLE_VALUE)
        return std::make_unique<Descriptor>(handle);
    error = lastError();
    return nullptr;
}

} // namespace trace
