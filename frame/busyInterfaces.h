#pragma once

/**
 * Makes main windows, and the strips of their wait notices, tell screen readers when they are busy,
 * for which Qt's own interfaces have no property. Before the first window is shown; more than once
 * does no harm. Main thread only.
 */
void installBusyInterfaces();
