#pragma once

#include <functional>

/**
 * Runs the action once, after the first window of the application object that exists has painted
 * itself with all that it holds.
 */
void afterFirstPaint(std::function<void()> action);
