#pragma once

/** Who wants to hear of the steps of this thread's work; null if nobody does. */
using WorkStepListener = void (*)();
inline constinit thread_local WorkStepListener workStepListener = nullptr;

/**
 * Between two steps of work that may take long: reads of a unit, pieces of a large text. Whoever
 * shows that the program is at work has its only chance then, since no event is handled.
 */
inline void workStep()
{
    if (workStepListener)
        workStepListener();
}
