#pragma once

#include "frame/VornAux2.h"

#include <QString>

#include <cstdint>

/** The device library's own words for a code. */
QString deviceText(std::int32_t code);

/**
 * "operation: Error:  text of the code", which stands in a field instead of the value that could
 * not be read.
 */
QString fieldErrorText(std::int32_t code, const char *operation);

/** "Error(code) in operation: text of the code", as every error dialog says it. */
QString errorText(std::int32_t code, const char *operation);

/**
 * Error report for code that has no page: a modal box without a parent, or one line on the
 * standard error stream in a run without windows. Silent on success and on "not supported", since
 * its callers write to whole families without asking what the unit has. Main thread only.
 */
void reportError(std::int32_t code, const char *operation);
