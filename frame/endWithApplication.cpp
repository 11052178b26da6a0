#include "frame/endWithApplication.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int longestEnd = 10000; // milliseconds, for all threads together

struct Ending {
    QThread *thread;
    std::function<void()> stop;
};

std::vector<Ending> &endings()
{
    static std::vector<Ending> all;
    return all;
}

bool awaited = false; // by the application object's end

void endAll()
{
    awaited = false;
    for (const Ending &ending : endings())
        ending.stop();
    const QDeadlineTimer end(longestEnd);
    for (const Ending &ending : endings()) {
        if (ending.thread->wait(end))
            delete ending.thread;
    }
    endings().clear();
}

/** Those that have ended are only kept until the next one comes, so that they don't pile up. */
void deleteEnded()
{
    const auto ended = [](const Ending &ending) {
        if (!ending.thread->isFinished() || !ending.thread->wait(0))
            return false;
        delete ending.thread;
        return true;
    };
    auto &all = endings();
    all.erase(std::remove_if(all.begin(), all.end(), ended), all.end());
}

} // namespace

void endWithApplication(QThread *thread, std::function<void()> stop)
{
    // Those that have ended may leave the list empty before.
    if (!std::exchange(awaited, true))
        qAddPostRoutine(endAll);
    deleteEnded();
    endings().push_back({thread, std::move(stop)});
}
