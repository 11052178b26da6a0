#include "virtualunit/calls/Journal.h"

#include "virtualunit/state/latin1.h"
#include "virtualunit/system/system.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <utility>

namespace virtualunit {

namespace {

std::atomic<unsigned> generation{0};
std::atomic<bool> inMemory{false};

/** Null without VORN_JOURNAL. */
system::AppendedFile *journalFile()
{
    static system::AppendedFile *const file = [] {
        const auto path = system::environment("VORN_JOURNAL");
        if (path.empty())
            return static_cast<system::AppendedFile *>(nullptr);
        std::string reason;
        auto opened = system::AppendedFile::open(system::pathOf(path), reason);
        if (!opened)
            std::fprintf(stderr,
                "The journal \"%s\" can't be written, calls go on without it: %s\n", path.c_str(),
                reason.c_str());
        return opened.release();
    }();
    return file;
}

/** Never destroyed: threads may still call while the process ends. */
struct Record {
    std::mutex mutex;
    std::vector<Call> calls;
    unsigned lastThread = 0;
    unsigned generation = 0;
};

Record &record()
{
    static auto *const only = new Record;
    return *only;
}

/** The record's mutex is held. */
unsigned threadNumber(Record &calls)
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

bool journalRuns() noexcept
{
    return inMemory.load(std::memory_order_relaxed) || journalFile() != nullptr;
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
    if (auto *file = journalFile())
        file->append(call.text() + "\n");
    if (inMemory)
        calls.calls.push_back(std::move(call));
}

std::string quoted(std::string_view latin1)
{
    std::string text = "\"";
    for (const char character : latin1) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            text += '\\';
            text += character;
        } else if (character == '\n') {
            text += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02x", unsigned(byte));
            text += code;
        } else {
            text += fromLatin1({&character, 1});
        }
    }
    return text + "\"";
}

std::string Call::text() const
{
    std::string line = "T" + std::to_string(thread) + " " + operation + "(";
    if (handle != 0)
        line += "#" + std::to_string(handle) + (arguments.empty() ? "" : ", ");
    line += arguments + ")";
    const bool givesText = operation.ends_with("Text");
    if (!result.empty() || givesText)
        line += " = " + (givesText ? virtualunit::quoted(result) : result);
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
