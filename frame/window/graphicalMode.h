#pragma once

class QWidget;

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

/**
 * Shows the main window in the middle of the screen, where the window system lets programs choose,
 * and smaller than it is only where the screen has no room for it.
 */
void showOnScreen(QWidget &window);
