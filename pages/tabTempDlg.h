#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabTempDlg.h"

#include <QPointer>

#include <array>

/**
 * Temperature page: the sensors that the unit has when the page is built, in degrees Celsius and
 * Fahrenheit, read when the page shows and on request.
 */
class tabTempDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabTempDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void refreshClicked();
    void sensorIndexChanged(int index);

private:
    /** One line of the group box. The pointers turn null when the row is taken out for good. */
    struct Row {
        QPointer<QLabel> label;
        QPointer<QLineEdit> edit;
        void hide() const;
        void setText(const QString &text) const;
    };

    void findSensors();
    int findProcessorSensors();
    void addSensor(const QString &name, int index);
    void removeRow(int gridRow);
    void removeProcessorRows();
    void refresh();
    void readFixedSensor(
        decltype(&Diagnostics_getSSTemp) query, const Row &row, const char *name, QString &text);
    void readProcessorSensor(int entry, QString &text);

    Form<Ui::tabTemp> ui{this};
    Row supervisor{ui->label_2, ui->editTemp_SS};
    Row board{ui->label_3, ui->editTemp_PCB};
    Row processor{ui->label_5, ui->editTemp_CPU};
    Row processorBoard{ui->label_4, ui->editTemp_CPUBoard};
    DeviceHandle<Diagnostics_create, Diagnostics_release> diagnostics;
    /** For each entry of the sensor list: 1 the system supervisor, 2 the main board, 10 + n the
     *  processor module's sensor n. */
    std::array<std::int32_t, 20> sensorIndex{};
    /** Where each processor sensor said it sits, for the row of its error text. */
    std::array<std::int32_t, 20> sensorKind{};
};
