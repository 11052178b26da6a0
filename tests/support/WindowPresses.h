#pragma once

#include "tests/support/Dialogs.h"

#include <functional>

class QAbstractButton;
class VornSettings;

namespace support {

/** Whether a button takes part. */
using WorthPressing = std::function<bool(const QAbstractButton *)>;

/** Shows each page of the window that is shown, presses each control once and fires each timer. */
void pressWindow(VornSettings &window, const WorthPressing &isWorthPressing);

/** An answer to dialogs: questions are denied, so that no reset with its pauses runs; all else is
 *  closed. */
void denyOrClose(QDialog *dialog);

/** Whether a dialog is one of those that the pages have for any device library. */
bool isForeseen(const Dialog &dialog);

} // namespace support
