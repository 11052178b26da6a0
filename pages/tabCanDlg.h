#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabCanDlg.h"

#include <cstdint>

/**
 * CAN page: baud rate in kbit/s and frame type of each CAN net, which take effect when the computer
 * or its CAN driver restarts. The nets are looked for once, when the page is made.
 */
class tabCanDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabCanDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void buttonApplyClicked();
    void deviceIndexChanged(int index);

private:
    // Nets count from 1.
    void findNets();
    void showNoNets();
    void loadNet(std::uint8_t net);
    void loadFrameType(std::uint8_t net);
    void loadBaudRate(std::uint8_t net);
    void insertBaudRate(const QString &text);
    void applyNet(std::uint8_t net);
    bool applyFrameType(std::uint8_t net);
    void applyBaudRate(std::uint8_t net);

    Form<Ui::tabCan> ui{this};
    DeviceHandle<Can_create, Can_release> can;
    bool noCanNets = true; ///< until a net has answered; the page is idle meanwhile
};
