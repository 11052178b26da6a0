#include "reports/Inputs.h"

#include "platform/system.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace reports {

namespace {

using platform::pathOf;
using platform::textOf;
namespace fs = std::filesystem;

constexpr std::size_t largest = std::size_t{1} << 20; ///< bytes that are held at once

bool isReportName(const fs::path &path)
{
    std::string extension = textOf(path.extension());
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? char(character + 32) : character;
    });
    return extension == ".txt";
}

std::size_t readSome(std::streambuf &from, char *to, std::size_t size)
{
    const auto count = from.sgetn(to, std::streamsize(size));
    return count > 0 ? std::size_t(count) : 0;
}

/** A file, or something that has the name of one and will be told of when it is opened. */
bool mayBeReport(const fs::directory_entry &entry)
{
    std::error_code error;
    const auto type = entry.status(error).type();
    return type == fs::file_type::regular || type == fs::file_type::not_found ||
           type == fs::file_type::none;
}

} // namespace

Inputs::Inputs(std::vector<std::string> names, const std::string &list)
    : given(names.begin(), names.end())
{
    if (list == "-") {
        listed = &std::cin;
        standardInput = true;
    } else if (!list.empty()) {
        std::error_code error;
        listFile.open(pathOf(list), std::ios::binary);
        if (listFile && !fs::is_directory(pathOf(list), error))
            listed = &listFile;
        else
            listTrouble = "the list \"" + list + "\" can't be read";
    }
}

bool Inputs::nextName(std::string &name)
{
    if (!given.empty()) {
        name = std::move(given.front());
        given.pop_front();
        return true;
    }
    while (listed && std::getline(*listed, name)) {
        if (name.ends_with('\r'))
            name.pop_back();
        if (!name.empty())
            return true;
    }
    return false;
}

bool Inputs::next(Input &input)
{
    input = {};
    while (true) {
        if (!inFolder.empty()) {
            input = std::move(inFolder.front());
            inFolder.pop_front();
            return true;
        }
        if (!nextName(input.name)) {
            input.trouble = std::exchange(listTrouble, {});
            return !input.trouble.empty();
        }
        if (input.name == "-" && std::exchange(standardInput, true))
            input.trouble = "-: the standard input is read already";
        std::error_code error;
        if (input.name == "-" || !fs::is_directory(pathOf(input.name), error))
            return true;
        list(input.name);
    }
}

void Inputs::list(const std::string &folder)
{
    std::vector<Input> found;
    std::vector<fs::path> folders{pathOf(folder)};
    while (!folders.empty()) {
        const fs::path here = std::move(folders.back());
        folders.pop_back();
        std::error_code error;
        for (fs::directory_iterator entry(here, error), end; !error && entry != end;
             entry.increment(error)) {
            std::error_code unknown;
            if (entry->symlink_status(unknown).type() == fs::file_type::directory)
                folders.push_back(entry->path());
            else if (isReportName(entry->path()) && mayBeReport(*entry))
                found.push_back({textOf(entry->path()), {}});
        }
        if (error)
            found.push_back({textOf(here), textOf(here) + ": can't be listed: " + error.message()});
    }
    std::sort(found.begin(), found.end(),
        [](const Input &one, const Input &other) { return one.name < other.name; });
    inFolder.assign(std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
}

Content::Content(const Input &input)
{
    if (!input.trouble.empty())
        throw Trouble{input.trouble};
    if (input.name == "-") {
        load(*std::cin.rdbuf());
        if (large)
            spool(*std::cin.rdbuf());
        return;
    }
    const fs::path path = pathOf(input.name);
    std::error_code error;
    const auto status = fs::status(path, error);
    file.pubsetbuf(nullptr, 0); // it is read in large pieces
    if (status.type() == fs::file_type::not_found)
        throw Trouble{input.name + ": there is no such file"};
    if (!file.open(path, std::ios::in | std::ios::binary))
        throw Trouble{input.name + ": can't be opened"};
    try {
        load(file);
    } catch (const std::exception &) {
        throw Trouble{input.name + ": can't be read"};
    }
    if (large && !fs::is_regular_file(status))
        spool(file); // a pipe
}

Content::~Content()
{
    if (spooled)
        std::fclose(spooled);
}

void Content::load(std::streambuf &from)
{
    constexpr std::size_t step = std::size_t{1} << 14;
    std::size_t size = 0;
    while (size <= largest) {
        if (start.size() < size + step)
            start.resize(std::max(size + step, 2 * size));
        const std::size_t count = readSome(from, start.data() + size, start.size() - size);
        if (count == 0)
            break;
        size += count;
    }
    start.resize(size);
    large = size > largest;
}

void Content::spool(std::streambuf &from)
{
    spooled = std::tmpfile();
    bool written = spooled != nullptr;
    while (written && !start.empty()) {
        written = std::fwrite(start.data(), 1, start.size(), spooled) == start.size();
        start.resize(readSome(from, start.data(), start.size()));
    }
    if (!written)
        throw Trouble{"there is no room for a temporary file"};
    start.assign(1, '\0'); // it wasn't empty
}

Facts Content::read(EntrySink &sink)
{
    if (!large) {
        Lines lines{std::string_view(start)};
        return readReport(lines, sink);
    }
    if (spooled) {
        std::rewind(spooled);
        Lines lines(
            [this](char *to, std::size_t size) { return std::fread(to, 1, size, spooled); });
        return readReport(lines, sink);
    }
    start.resize(1);
    start.shrink_to_fit();
    file.pubseekpos(0);
    Lines lines([this](char *to, std::size_t size) { return readSome(file, to, size); });
    return readReport(lines, sink);
}

Facts readFacts(Content &content, const std::string &name)
{
    if (content.isEmpty())
        throw Trouble{name + ": is empty"};
    NoEntries nothing;
    Facts facts = content.read(nothing);
    if (facts.known == 0)
        throw Trouble{name + ": is no system report"};
    return facts;
}

} // namespace reports
