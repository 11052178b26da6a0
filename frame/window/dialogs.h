#pragma once

class QColorDialog;
class QFileDialog;

/** Makes Qt's own file dialog fit the smallest screen, and puts the removable drives that are
 *  plugged in now into its side bar. For a dialog that is about to show; does nothing to one of
 *  the system's. Main thread only. */
void fitFileDialog(QFileDialog *dialog);

/** Makes Qt's own colour dialog fit the smallest screen. As above. */
void fitColorDialog(QColorDialog *dialog);
