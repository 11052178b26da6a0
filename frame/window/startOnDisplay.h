#pragma once

#include <QApplication>

#include <optional>

class QSize;

/**
 * Makes the application object, at a scale at which the window fits the screen and can be drawn.
 * What it changes of the scale that is asked for, it tells on the standard error stream. Where
 * there is no display, the program ends with one sentence there and the exit value 1. Main thread
 * only.
 * @param argc, argv of main(), which must outlive the object; Qt takes its own options out of them
 * @param window size of the window in its own pixels
 */
void startOnDisplay(std::optional<QApplication> &application, int &argc, char **argv, QSize window);

/** The scale to draw at: never below 1, and lowered to a number of quarters where it is too large.
 *  @param asked for by the user or the desktop
 *  @param room greatest scale at which the window fits the screen */
double scaleThatFits(double asked, double room);
