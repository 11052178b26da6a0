#pragma once

#include "devicetools/check/Channel.h"
#include "devicetools/check/system.h"
#include "devicetools/contract.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace check {

/** Thrown out of a test that somebody wants to end. */
struct Stopped {
};

/** What a test was told on the command line. */
struct Options {
    std::string library;
    std::set<std::string, std::less<>> avoided; ///< functions that are left out
    bool write = false;
    bool power = false;
    std::string firmware;
    int callLimit = 10; ///< seconds for one call, after which it counts as endless
};

/** An operation with what the caller gives; texts must outlive it. */
struct Question {
    const contract::Operation *operation;
    std::vector<contract::Value> given; ///< by the place of the argument; others are 0
    /** As it is written in messages: "Can_getBaudrate(2)". */
    std::string text() const;
};

/** Where a call's out values lie. */
enum class Place {
    Guarded, ///< amid bytes that must stay as they are
    AtEdge   ///< right before a page that nobody may touch
};

/** What came of a question. */
struct Answer {
    DeviceCode code = 0;
    /** By the place of the argument: the bytes of its out value or buffer, as they are afterwards.
     */
    std::vector<std::vector<unsigned char>> written;
    /** Place of an argument around which bytes have changed; -1 if none. */
    int overrun = -1;
    double seconds = 0;

    /** The number that the argument holds. */
    double number(const contract::Operation &operation, std::size_t place) const;
    /** "0 (17, 3)" or the code alone. */
    std::string text(const contract::Operation &operation) const;
};

constexpr std::uint32_t roomySize = 4096; ///< bytes of a buffer that every text goes into
constexpr unsigned char oneFilling = 0x55;
constexpr unsigned char otherFilling = 0xAA;

/** Bytes of the memory that out values lie in, one piece for each argument of a call. */
class Arena
{
public:
    Arena();
    system::GuardedMemory &operator[](std::size_t place) { return *pieces[place]; }

private:
    std::array<std::unique_ptr<system::GuardedMemory>, Channel::valueCount> pieces;
};

/** The library in a test's process: its functions, called under the eyes of the watching process.
 *  Used by several threads, each with a thread number and an arena of its own. */
class Session
{
public:
    Session(Channel &watched, Options given);

    const Options options;
    Channel &channel;

    /** Loads the library; throws std::runtime_error. */
    void load();
    void unload();
    bool isLoaded() const { return library != nullptr; }

    /** Whether the library exports it. */
    bool exports(const char *function) const { return library->function(function) != nullptr; }
    /** Whether it does, and nobody said to avoid it. */
    bool has(std::string_view function) const;
    /** A handle of that family, null if its create is avoided or missing. */
    void *create(const contract::Family &family, int thread = 0);
    void release(const contract::Family &family, void *handle, int thread = 0);

    Answer ask(const Question &question, void *handle, unsigned char filling = oneFilling,
        Place place = Place::Guarded, std::uint32_t size = roomySize, int thread = 0);
    /** The same on a handle of the family that the session keeps. */
    Answer ask(const Question &question, unsigned char filling = oneFilling,
        Place place = Place::Guarded, std::uint32_t size = roomySize);
    /** A text of a code, null if the library gives null. */
    const char *textOf(const contract::Text &text, std::int64_t value, int thread = 0);

    /** The kept handle of a family. */
    void *handle(const char *family);
    /** Gives back the kept handles. */
    void releaseAll();

    void fail(const std::string &text) { note(Severity::Fail, text); }
    void warn(const std::string &text) { note(Severity::Warn, text); }
    void skip(const std::string &text) { note(Severity::Skip, text); }
    bool hasFailed() const;

private:
    void note(Severity severity, const std::string &text);
    system::Library::Function function(std::string_view name) const;
    void begin(const char *name, int thread);
    void end(int thread);

    std::unique_ptr<system::Library> library;
    std::map<std::string, system::Library::Function, std::less<>> functions;
    std::map<std::string, void *, std::less<>> handles;
    std::array<Arena, Channel::threadCount> arenas;
};

/** Whether it asks and changes nothing: it hands something out. */
bool isReading(const contract::Operation &operation);

/** Every question that can be asked without changing anything: each reading operation with the
 *  arguments that the program has for it. Those with the texts' buffers have a roomy one. */
std::vector<Question> readingQuestions(Session &session);

/** A question by name and the arguments behind the handle that are given, numbers all. */
Question question(std::string_view operation, std::initializer_list<double> given = {});

/** A number as the value of that argument. */
contract::Value valueOf(const contract::Argument &argument, double number);

/** "17", "0.5": a number as people write it. */
std::string textOf(double number);

} // namespace check
