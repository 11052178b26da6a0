#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabDigIODlg.h"

#include <QTimer>

/** Digital I/O page: the four input lines, kept up to date, and the four output lines. */
class tabDigIODlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabDigIODlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private slots:
    void updateIOValues();
    void doclicked(bool checked);

private:
    void findOutputs();
    void removeOutputs();

    Form<Ui::tabDigIO> ui{this};
    DeviceHandle<DigIO_create, DigIO_release> digIO;
    QTimer updateTimer{this};
    std::uint8_t lastInputs = 0; ///< mask as last shown
};
