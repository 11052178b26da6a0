#pragma once

#include <atomic>
#include <cstdint>

class QThread;

/**
 * Takes a thread over from a page that neither waits for it nor deletes it. Both are done when the
 * application object goes, after the last window: the flag, at which the thread ends, is set to 0
 * then. A thread that takes more than 10 s to end is left to the end of the process.
 *
 * @param keepRunning lives as long as the process
 * Main thread only.
 */
void endWithApplication(QThread *thread, std::atomic<std::uint8_t> &keepRunning);
