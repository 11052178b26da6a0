#pragma once

/**
 * The tool with its window: builds the application object and the window, runs the event loop and
 * returns its value. The toolkit may take its own options out of the argument vector.
 */
int runGraphicalMode(int &argc, char **argv);

/**
 * Style, palette and font below the window's style sheet, the same on every desktop. For an
 * application object that exists and has no widgets yet.
 */
void setApplicationLook();
