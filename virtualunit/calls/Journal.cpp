#include "virtualunit/calls/Journal.h"

#include "devicetools/notation.h"
#include "platform/system.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace virtualunit {

namespace {

std::atomic<unsigned> generation{0};
std::atomic<bool> inMemory{false};

/** VORN_JOURNAL's file. It is open from the first call on until the library goes. */
class JournalFile
{
public:
    /** Whether calls go there. Cheap. */
    bool isOpen() { return state.load(std::memory_order_relaxed) == State::Open || opens(); }
    void append(std::string_view text);

private:
    enum class State { Unknown, Open, None };

    bool opens();
    void close();

    std::atomic<State> state{State::Unknown};
    std::mutex mutex;
    std::unique_ptr<platform::AppendedFile> file;
};

bool JournalFile::opens()
{
    if (state == State::None)
        return false;
    const std::lock_guard lock(mutex);
    if (state != State::Unknown)
        return state == State::Open;
    const auto path = platform::environment("VORN_JOURNAL");
    std::string reason;
    if (!path.empty())
        file = platform::AppendedFile::open(platform::pathOf(path), reason);
    if (!path.empty() && !file)
        std::fprintf(stderr, "The journal \"%s\" can't be written, calls go on without it: %s\n",
            path.c_str(), reason.c_str());
    state = file ? State::Open : State::None;
    if (!file)
        return false;
    struct Closer {
        JournalFile &journal;
        ~Closer() { journal.close(); }
    };
    static const Closer closer{*this};
    return true;
}

void JournalFile::append(std::string_view text)
{
    if (!isOpen())
        return;
    const std::lock_guard lock(mutex);
    if (file)
        file->append(text);
}

/** At the library's end, which is the process's end, too: who calls still, opens it again. */
void JournalFile::close()
{
    // Not while another thread waits for a pipe's reader, who may never come.
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (!lock)
        return;
    file.reset();
    state = State::Unknown;
}

/** Never destroyed, as the record below. */
JournalFile &journalFile()
{
    static auto *const only = new JournalFile;
    return *only;
}

/** Never destroyed: threads may still call while the process ends. */
struct CallRecord {
    std::mutex mutex;
    std::vector<Call> calls;
    unsigned lastThread = 0;
    unsigned generation = 0;
};

CallRecord &record()
{
    static auto *const only = new CallRecord;
    return *only;
}

/** The record's mutex is held. */
unsigned threadNumber(CallRecord &calls)
{
    thread_local unsigned number = 0;
    thread_local unsigned numberedIn = 0;
    const auto current = generation.load();
    if (calls.generation != current) {
        calls.generation = current;
        calls.lastThread = 0;
    }
    if (number == 0 || numberedIn != current) {
        number = ++calls.lastThread;
        numberedIn = current;
    }
    return number;
}

} // namespace

bool journalRuns()
{
    return inMemory.load(std::memory_order_relaxed) || journalFile().isOpen();
}

unsigned journalGeneration() noexcept
{
    return generation.load();
}

void journal(const char *operation, std::optional<unsigned> handle, std::string result,
    std::string arguments, std::string outs)
{
    Call call;
    call.operation = operation;
    call.handle = handle.value_or(0);
    call.arguments = std::move(arguments);
    if (handle == 0U)
        call.arguments = call.arguments.empty() ? "#0" : "#0, " + call.arguments;
    call.result = std::move(result);
    call.outs = std::move(outs);

    auto &calls = record();
    const std::lock_guard lock(calls.mutex);
    call.thread = threadNumber(calls);
    if (journalFile().isOpen())
        journalFile().append(call.text() + "\n");
    if (inMemory)
        calls.calls.push_back(std::move(call));
}

std::string Call::text() const
{
    std::string line = "T" + std::to_string(thread) + " " + operation + "(";
    if (handle != 0)
        line += "#" + std::to_string(handle) + (arguments.empty() ? "" : ", ");
    line += arguments + ")";
    const bool givesText = operation.ends_with("Text");
    if (givesText)
        notation::appendText(line += " = ", result);
    else if (!result.empty())
        line += " = " + result;
    if (!outs.empty())
        line += " [" + outs + "]";
    return line;
}

void startJournal()
{
    auto &calls = record();
    const std::lock_guard lock(calls.mutex);
    calls.calls.clear();
    ++generation;
    inMemory = true;
}

std::vector<Call> takeJournal()
{
    auto &calls = record();
    const std::lock_guard lock(calls.mutex);
    return std::exchange(calls.calls, {});
}

void stopJournal()
{
    inMemory = false;
}

} // namespace virtualunit
