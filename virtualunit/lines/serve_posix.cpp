#include "virtualunit/lines/serve.h"

#include "virtualunit/lines/Lines.h"

#include <csignal>
#include <iostream>
#include <stdexcept>
#include <thread>

namespace virtualunit::lines {

namespace {

using namespace std::chrono_literals;

volatile std::sig_atomic_t asked = 0;

void askToEnd(int)
{
    asked = 1;
}

} // namespace

const char *const serveLinesHelp =
    "Serves the GPS receiver and the modem on pseudo-terminals until interrupted";

void serveLines(const std::filesystem::path &folder, const std::filesystem::path &recording)
{
    if (folder.empty())
        throw std::runtime_error(
            "There is no folder for the lines: set VORN_SERIAL_DIR to it or name it with --dir");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, askToEnd);
    Lines lines(folder, recording);
    std::cout << "Serving the unit's serial lines in " << folder.string() << std::endl;
    std::string trouble;
    while (asked == 0) {
        try {
            lines.serve(Lines::Clock::now());
            trouble.clear();
            std::this_thread::sleep_for(20ms);
        } catch (const std::exception &exception) {
            if (trouble != exception.what())
                std::cerr << "vornunit: " << exception.what() << std::endl;
            trouble = exception.what();
            std::this_thread::sleep_for(500ms);
        }
    }
}

} // namespace virtualunit::lines
