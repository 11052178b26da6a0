#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/**
 * What the check wants to know of the operating system; the system's own file is chosen by CMake.
 * Texts are UTF-8. What a system can't tell is nullopt.
 */
namespace check::system {

/** Memory that a process shares with one that it starts. Zero at first. */
class SharedMemory
{
public:
    explicit SharedMemory(std::size_t size);
    /** The same memory in the process that was started with the token. */
    SharedMemory(const std::string &token, std::size_t size);
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;
    ~SharedMemory();

    void *data() const { return memory; }
    /** How the system calls it in this process. */
    std::intptr_t descriptor() const { return handle; }
    /** By what a process that gets it finds it. */
    std::string token() const;

private:
    std::intptr_t handle;
    void *memory;
    std::size_t size;
};

/** How a process came to its end. */
struct End {
    int exitCode = 0;
    std::string crash; ///< what killed it, "SIGSEGV"; empty if it left by itself
};

/** This program once more, with other arguments. What it prints is kept from the terminal. */
class Process
{
public:
    Process(const std::vector<std::string> &arguments, const SharedMemory &memory);
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    ~Process(); ///< kills it if it runs

    /** Waits at most that long; nullopt while it runs. */
    std::optional<End> wait(std::chrono::milliseconds time);
    void kill();
    /** The first bytes that it printed on either stream. */
    std::string printed() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

/** Remembers that somebody wants the program to end, from now on, instead of ending it. */
void catchInterruptions();
/** The signal or event that wants it; 0 for none. */
int interruption();
/** Ends this process as the event would have. */
[[noreturn]] void endInterrupted(int event);
/** In a test's process: no windows and files about crashes, and the terminal's keys are its
 * parent's affair. */
void prepareTestProcess();

/** A device library. */
class Library
{
public:
    using Function = void (*)();

    /** By an absolute path. Throws a std::runtime_error with the system's reason. */
    explicit Library(const std::string &path);
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
    ~Library();

    /** Null if the library itself doesn't export it. */
    Function function(const char *name) const;

private:
    void *handle;
};

/** Some pages of memory with one behind them that nobody may touch. */
class GuardedMemory
{
public:
    explicit GuardedMemory(std::size_t wanted);
    GuardedMemory(const GuardedMemory &) = delete;
    GuardedMemory &operator=(const GuardedMemory &) = delete;
    ~GuardedMemory();

    unsigned char *begin() const { return memory; }
    unsigned char *end() const { return memory + usable; } ///< the first byte that is out of bounds

private:
    unsigned char *memory;
    std::size_t usable;
};

/** What a library may leave changed in its process. Each as a text that is equal if it is. */
std::optional<std::string> umaskNow();
std::optional<std::string> signalHandlersNow();
/** How many threads the process has. */
std::optional<int> threadsNow();
/** What the process has open: one text for each, sorted. */
std::optional<std::vector<std::string>> descriptorsNow();
/** Bytes that the process has to itself. */
std::optional<std::size_t> privateBytesNow();

} // namespace check::system
