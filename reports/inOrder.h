#pragma once

#include "reports/Inputs.h"

#include <functional>

namespace reports {

class Queue;

/** What one report's turn has to print. Small results wait until those before them are printed;
 *  large ones hold their turn and go straight out, so that memory stays bounded. */
class Output
{
public:
    Output(Queue &shared, std::size_t place);

    void write(std::string_view text)
    {
        text_.append(text);
        if (text_.size() > limit)
            flush();
    }
    /** For those that append by themselves; write({}) afterwards. */
    std::string &text() { return text_; }

private:
    static constexpr std::size_t limit = std::size_t{1} << 20;
    void flush();

    Queue &queue;
    std::size_t turn;
    std::string text_;
};

using Job = std::function<void(const Input &, Output &)>;

/**
 * Does the job for each input, on all cores, and prints the results in the order of the inputs. A
 * Trouble that a job throws goes to the standard error stream in its turn, and the others go on.
 * @param job called by several threads at once
 * @return whether there was no trouble; throws a Trouble when the output can't be written
 */
bool forEachInOrder(Inputs &inputs, const Job &job);

} // namespace reports
