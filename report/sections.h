#pragma once

#include <QString>

/*
 * The sections of the system report. Each opens the device families that it needs, reads every item
 * anew and returns finished lines; an item that can't be read becomes a line that says so, and the
 * section goes on. They neither fail nor show anything, but for cpuBoardDataText(). Main thread
 * only.
 */

/** Identity of the main board and of the add-on board, from their memories. */
QString eepromDataText();

/** How the unit has lived: reasons, run times, temperatures, health of the storage devices. */
QString diagnosticDataText();

/** Supply voltages. */
QString adcDataText();

/** What the CPU board's own library tells of it, and the BIOS version. Empty if that library can't
 *  be used; a missing jida.dll is told in a box that waits to be closed. */
QString cpuBoardDataText();

/** All settings and power states that can be read back, the battery last. */
QString settingsDataText();

/** The external battery. */
QString batteryDataText();
