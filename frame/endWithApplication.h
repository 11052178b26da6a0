#pragma once

#include <functional>

class QThread;

/**
 * Takes a thread over from a page that neither waits for it nor deletes it. Both are done when the
 * application object goes, after the last window; it is told to end then. A thread that takes more
 * than 10 s to end is left to the end of the process.
 *
 * @param stop tells the thread to end, and doesn't wait for it
 * Main thread only.
 */
void endWithApplication(QThread *thread, std::function<void()> stop);
