#include "virtualunit/tool/journal.h"

#include "commandline/commandline.h"
#include "platform/system.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>
#include <vector>

namespace tool {

using commandline::Refusal;
using platform::pathOf;

namespace {

/** Prints what the journal holds from that byte on and says where the next call goes on. A journal
 *  that has become shorter was emptied and is read from its beginning. */
std::uintmax_t printJournal(const std::string &file, std::uintmax_t position)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(pathOf(file), error);
    if (error || size == position)
        return error ? 0 : position;
    if (size < position)
        position = 0;
    std::ifstream stream(pathOf(file), std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(position));
    std::vector<char> chunk(std::size_t{64} * 1024);
    while (stream && std::cout) {
        stream.read(chunk.data(), std::streamsize(chunk.size()));
        std::cout.write(chunk.data(), stream.gcount());
        position += static_cast<std::uintmax_t>(stream.gcount());
    }
    std::cout.flush();
    return position;
}

void clearJournal(const std::string &file)
{
    // Emptied in place: the processes that write to it go on writing to the same file.
    std::error_code error;
    std::filesystem::resize_file(pathOf(file), 0, error);
    if (error && error != std::errc::no_such_file_or_directory)
        throw Refusal{"The journal \"" + file + "\" can't be emptied: " + error.message()};
}

} // namespace

void showJournal(const std::string &file, bool clear, bool follow)
{
    if (file.empty())
        throw Refusal{"There is no journal: set VORN_JOURNAL to its file or name it with --file"};
    if (clear)
        clearJournal(file);
    if (clear && !follow)
        return;
    if (!follow && !std::ifstream(pathOf(file)))
        throw Refusal{"The journal \"" + file + "\" can't be read"};
    auto position = printJournal(file, 0);
    while (follow && std::cout) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        position = printJournal(file, position);
    }
}

} // namespace tool
