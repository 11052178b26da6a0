#include "tests/support/system.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include <malloc.h>
#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

namespace support {

namespace {

// What the system tells of all handles; its headers leave this out.
constexpr int extendedHandleInformation = 64;
constexpr LONG infoLengthMismatch = LONG(0xC0000004);
using QueryInformation = LONG(NTAPI *)(int what, void *out, ULONG size, ULONG *needed);
struct Handles {
    ULONG_PTR count;
    ULONG_PTR reserved;
};
struct Handle {
    void *object;
    ULONG_PTR processId;
    ULONG_PTR value;
    ULONG access;
    USHORT creatorIndex;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

PROCESS_MEMORY_COUNTERS memory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

QString textOf(HWND window)
{
    wchar_t text[256] = {};
    GetWindowTextW(window, text, 256);
    return QString::fromWCharArray(text);
}

bool isOfClass(HWND window, const wchar_t *name)
{
    wchar_t text[64] = {};
    return GetClassNameW(window, text, 64) > 0 && lstrcmpiW(text, name) == 0;
}

/** The children of a box, in their order. */
struct Parts {
    QStringList texts;
    QStringList buttons;
};

BOOL CALLBACK addPart(HWND child, LPARAM out)
{
    auto &parts = *reinterpret_cast<Parts *>(out);
    if (isOfClass(child, L"Button"))
        parts.buttons << textOf(child).remove(QLatin1Char('&'));
    else if (!textOf(child).isEmpty())
        parts.texts << textOf(child);
    return TRUE;
}

/** Zero for a process that is gone. */
DWORD parentOf(DWORD process)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    DWORD parent = 0;
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32First(snapshot, &entry); more;
         more = Process32Next(snapshot, &entry)) {
        if (entry.th32ProcessID == process)
            parent = entry.th32ParentProcessID;
    }
    CloseHandle(snapshot);
    return parent;
}

struct Search {
    DWORD process; ///< whose box, or its child's
    HWND found;
};

BOOL CALLBACK findBox(HWND window, LPARAM out)
{
    auto &search = *reinterpret_cast<Search *>(out);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (!isOfClass(window, L"#32770") || !IsWindowVisible(window))
        return TRUE;
    if (process != search.process && parentOf(process) != search.process)
        return TRUE;
    search.found = window;
    return FALSE;
}

} // namespace

bool isPosix()
{
    return false;
}

QString programFile(const QString &name)
{
    return name + QLatin1String(".exe");
}

int openHandles()
{
    // Wine's GetProcessHandleCount() counts nothing.
    const auto query = reinterpret_cast<QueryInformation>(reinterpret_cast<Procedure>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    QByteArray memory(1 << 20, '\0');
    while (query(extendedHandleInformation, memory.data(), ULONG(memory.size()), nullptr) ==
           infoLengthMismatch)
        memory.resize(memory.size() * 2);
    const auto *table = reinterpret_cast<const Handles *>(memory.constData());
    const auto *first = reinterpret_cast<const Handle *>(table + 1);
    return int(std::count_if(first, first + table->count,
        [](const Handle &handle) { return handle.processId == GetCurrentProcessId(); }));
}

int threads()
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    int count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

qint64 residentMemory()
{
    return qint64(memory().WorkingSetSize);
}

qint64 peakMemory()
{
    return qint64(memory().PeakWorkingSetSize);
}

qint64 allocatedMemory()
{
    qint64 bytes = 0;
    _HEAPINFO entry{};
    while (_heapwalk(&entry) == _HEAPOK) {
        if (entry._useflag == _USEDENTRY)
            bytes += qint64(entry._size);
    }
    return bytes;
}

void makeMemoryCountable() {}

QByteArrayList oddFiles(const QString &)
{
    return {}; // the names of devices are no files at all here
}

QByteArray secondBefore1970()
{
    return {};
}

QStringList zombies()
{
    return {}; // a process is gone here with its last handle
}

Procedure deviceProcedure(const char *name)
{
    return reinterpret_cast<Procedure>(GetProcAddress(GetModuleHandleW(L"VornAux2.dll"), name));
}

class SystemBoxes::Watcher
{
public:
    explicit Watcher(DWORD processId)
        : process(processId)
        , worker([this] { watch(); })
    {}
    ~Watcher() { stop(); }
    Watcher(const Watcher &) = delete;
    Watcher &operator=(const Watcher &) = delete;

    QStringList stop()
    {
        ended = true;
        if (worker.joinable())
            worker.join();
        return seen;
    }

private:
    void watch()
    {
        HWND last = nullptr;
        while (!ended) {
            Search search{process, nullptr};
            EnumWindows(findBox, reinterpret_cast<LPARAM>(&search));
            if (search.found && search.found != last)
                answer(search.found);
            last = search.found;
            Sleep(20);
        }
    }

    void answer(HWND box)
    {
        Parts parts;
        EnumChildWindows(box, addPart, reinterpret_cast<LPARAM>(&parts));
        seen << textOf(box) + QLatin1Char('|') + parts.texts.join(QLatin1Char(',')) +
                    QLatin1Char('|') + parts.buttons.join(QLatin1Char(','));
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }

    DWORD process;
    std::atomic<bool> ended{false};
    QStringList seen;
    std::thread worker;
};

SystemBoxes::SystemBoxes(qint64 processId)
    : watcher(std::make_unique<Watcher>(DWORD(processId)))
{}

SystemBoxes::~SystemBoxes() = default;

QStringList SystemBoxes::take()
{
    return watcher->stop();
}

} // namespace support
