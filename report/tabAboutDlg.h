#pragma once

#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabAboutDlg.h"

/**
 * About page: the sections of the system report and the whole of it, read from the unit when one is
 * chosen and saved as they stand on the screen.
 */
class tabAboutDlg : public tabDlg
{
    Q_OBJECT

public:
    /** Reads the first section at once. */
    explicit tabAboutDlg(QWidget *parent = nullptr);

protected:
    /** Does nothing: the text stays as it was chosen, and the unit isn't read. */
    void showEvent(QShowEvent *event) override;

private slots:
    void selectionIndexChanged(int index);
    void SaveFileAs();

private:
    Form<Ui::tabAbout> ui{this};
    bool initialised = false; ///< whether the selection list is complete
};
