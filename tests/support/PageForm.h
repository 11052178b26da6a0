#pragma once

#include <QStringList>

class QWidget;

namespace support {

/**
 * A page's form, a line for the page and one for each widget in the form's order, further in than
 * the one that it stands in: object name, kind, and what the form sets: caption, picture, range and
 * steps, items, state, place, bounds, accessible name, tool-tip.
 *
 *     tabBuzzer: tabBuzzerDlg "Buzzer" 600x320
 *       icon: QLabel arts.png at 525,15 60x60
 *       groupBox: QGroupBox "Settings" at 10,10 500x251
 *         sliderFreq: QSlider 700 to 10000 by 10/100 called "Frequency"
 */
QStringList form(const QWidget *page);

/**
 * What is wrong with the page's layout at 600x320 in the program's look: what is clipped,
 * lies outside its parent, over a neighbour or over a group's title strip, or is less than 30
 * pixels high where it is to be pressed. Hidden widgets and all tabs count too. Shows the page for
 * a moment.
 */
QStringList layoutFaults(QWidget *page);

} // namespace support
