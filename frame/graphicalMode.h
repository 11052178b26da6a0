#pragma once

/** The settings tool with its window: runs until the window is closed and returns the exit value of
 *  the event loop. The argument vector may hold options of the toolkit. */
int runGraphicalMode(int &argc, char **argv);
