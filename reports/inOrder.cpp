#include "reports/inOrder.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <system_error>
#include <thread>

namespace reports {

/** Takes finished results in any order and prints them in theirs. */
class Queue
{
public:
    explicit Queue(Inputs &source)
        : inputs(source)
    {}

    /** The next input and its place; waits while the printing is far behind. */
    bool take(Input &input, std::size_t &place)
    {
        std::unique_lock lock(mutex);
        moved.wait(lock, [this] { return taken < printed + slots.size() || broken; });
        if (broken || !inputs.next(input))
            return false;
        place = taken++;
        return true;
    }

    void finish(std::size_t place, std::string &&text, std::string &&trouble)
    {
        const std::lock_guard lock(mutex);
        slots[place % slots.size()] = {std::move(text), std::move(trouble), true};
        while (Slot *slot = ready()) {
            print(slot->text);
            if (!slot->trouble.empty()) {
                std::fflush(stdout); // so that words stand behind what came before them
                std::cerr << "vornreport: " << slot->trouble << '\n';
                sound = false;
            }
            *slot = {};
            ++printed;
        }
        moved.notify_all();
    }

    /** Waits for that place's turn and prints a part of its result. */
    void printEarly(std::size_t place, std::string &text)
    {
        std::unique_lock lock(mutex);
        moved.wait(lock, [&] { return place == printed; });
        print(text);
        text.clear();
    }

    bool isSound() const { return sound; }
    bool isBroken() const { return broken; }

private:
    struct Slot {
        std::string text;
        std::string trouble;
        bool finished = false;
    };

    Slot *ready()
    {
        Slot &slot = slots[printed % slots.size()];
        return slot.finished ? &slot : nullptr;
    }

    void print(const std::string &text)
    {
        if (!broken)
            broken = std::fwrite(text.data(), 1, text.size(), stdout) != text.size();
    }

    Inputs &inputs;
    std::mutex mutex;
    std::condition_variable moved;
    std::array<Slot, 64> slots;
    std::size_t taken = 0;
    std::size_t printed = 0;
    bool sound = true;
    bool broken = false; ///< the output can't be written
};

Output::Output(Queue &shared, std::size_t place)
    : queue(shared)
    , turn(place)
{}

void Output::flush()
{
    queue.printEarly(turn, text_);
}

namespace {

void work(Queue &queue, const Job &job)
{
    Input input;
    std::size_t place = 0;
    while (queue.take(input, place)) {
        Output output(queue, place);
        std::string trouble;
        try {
            job(input, output);
        } catch (const Trouble &why) {
            trouble = why.text;
        } catch (const std::exception &failure) {
            trouble = input.name + ": " + failure.what();
        }
        queue.finish(place, std::move(output.text()), std::move(trouble));
    }
}

} // namespace

bool forEachInOrder(Inputs &inputs, const Job &job)
{
    Queue queue(inputs);
    std::vector<std::thread> helpers;
    try {
        for (unsigned core = 1; core < std::max(1U, std::thread::hardware_concurrency()); ++core)
            helpers.emplace_back([&] { work(queue, job); });
    } catch (const std::system_error &) {
        // The system gives no more threads; this one does it too.
    }
    work(queue, job);
    for (std::thread &helper : helpers)
        helper.join();
    if (queue.isBroken() || std::fflush(stdout) != 0)
        throw Trouble{"the output can't be written"};
    return queue.isSound();
}

} // namespace reports
