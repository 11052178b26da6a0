#include "pages/tabTempDlg.h"

#include "frame/processorSensors.h"
#include "frame/reportError.h"

#include <QGridLayout>

namespace {

constexpr int supervisorSensor = 1;
constexpr int boardSensor = 2;
constexpr int firstProcessorSensor = 10;

// Readings outside are those of an absent or broken sensor, degrees C.
constexpr std::int16_t lowestPlausible = -56;
constexpr std::int16_t highestPlausible = 255;

QString temperatureText(std::int16_t celsius)
{
    if (celsius < lowestPlausible || celsius > highestPlausible)
        return QStringLiteral("N/A");
    return QStringLiteral("%1°C (%2°F)").arg(celsius).arg(celsius * 1.8 + 32);
}

QString sensorName(std::int32_t kind)
{
    switch (kind) {
    case SENSOR_CPU:
        return QStringLiteral("CPU");
    case SENSOR_BOX:
        return QStringLiteral("Processor module box");
    case SENSOR_ENVIRONMENT:
        return QStringLiteral("Processor module env");
    case SENSOR_BOARD:
        return QStringLiteral("CPU board");
    case SENSOR_BACKPLANE:
        return QStringLiteral("Processor module backplane");
    case SENSOR_CHIPSETS:
        return QStringLiteral("Processor module chipsets");
    case SENSOR_VIDEO:
        return QStringLiteral("Processor module video");
    case SENSOR_OTHER:
        return QStringLiteral("Processor module other");
    default:
        return QStringLiteral("Unknown sensor: %1").arg(kind);
    }
}

/** Deletes the widget of a layout item and those of all items below it. */
void deleteChildWidgets(QLayoutItem *item)
{
    if (const QLayout *layout = item->layout()) {
        for (int i = 0; i < layout->count(); ++i)
            deleteChildWidgets(layout->itemAt(i));
    }
    delete item->widget();
}

/** Takes everything out of the grid that covers that cell. */
void removeGridCell(QGridLayout *layout, int row, int column, bool deleteWidgets)
{
    for (int i = layout->count() - 1; i >= 0; --i) {
        int firstRow = 0;
        int firstColumn = 0;
        int rows = 0;
        int columns = 0;
        layout->getItemPosition(i, &firstRow, &firstColumn, &rows, &columns);
        if (row < firstRow || row >= firstRow + rows || column < firstColumn ||
            column >= firstColumn + columns)
            continue;
        QLayoutItem *item = layout->takeAt(i);
        if (deleteWidgets)
            deleteChildWidgets(item);
        delete item;
    }
}

} // namespace

void tabTempDlg::Row::hide() const
{
    if (label)
        label->hide();
    if (edit)
        edit->hide();
}

void tabTempDlg::Row::setText(const QString &text) const
{
    if (edit)
        edit->setText(text);
}

tabTempDlg::tabTempDlg(QWidget *parent)
    : tabDlg(parent)
{
    findSensors();
    ui->editTemp->hide();
    ui->comboBoxSensor->hide();
}

void tabTempDlg::showEvent(QShowEvent *)
{
    refresh();
}

void tabTempDlg::refreshClicked()
{
    refresh();
}

void tabTempDlg::sensorIndexChanged(int)
{
    refresh();
}

void tabTempDlg::findSensors()
{
    std::int16_t scratch = 0;
    auto code = Diagnostics_getSSTemp(diagnostics, &scratch);
    if (code == DEVICE_OK)
        addSensor(QStringLiteral("System supervisor"), supervisorSensor);
    else if (code == DEVICE_NOT_SUPPORTED)
        removeRow(0);
    else
        supervisor.setText(errorText(code, "getSSTemp"));

    code = Diagnostics_getPCBTemp(diagnostics, &scratch);
    if (code == DEVICE_OK)
        addSensor(QStringLiteral("PCB"), boardSensor);
    else if (code == DEVICE_NOT_SUPPORTED)
        removeRow(2);
    else
        board.setText(errorText(code, "getPCBTemp"));

    // The rows go by the number of the sensors, whatever their kinds.
    const int processorSensors = findProcessorSensors();
    if (processorSensors == 0)
        removeRow(3);
    if (processorSensors <= 1)
        removeRow(4);
}

int tabTempDlg::findProcessorSensors()
{
    const int found =
        readProcessorSensors(diagnostics, [this](int n, const ProcessorSensor &sensor) {
            const int entry = ui->comboBoxSensor->count();
            addSensor(sensorName(sensor.kind), firstProcessorSensor + n);
            if (entry < int(sensorKind.size()))
                sensorKind[std::size_t(entry)] = sensor.kind;
        });
    if (found == mostProcessorSensors)
        showMessage(endlessSensorsText());
    return found;
}

void tabTempDlg::addSensor(const QString &name, int index)
{
    const int n = ui->comboBoxSensor->count();
    if (n >= int(sensorIndex.size()))
        return showMessage(QStringLiteral("Error, SensorIndex array out of range."));
    ui->comboBoxSensor->insertItem(n, name);
    sensorIndex[std::size_t(n)] = index;
}

void tabTempDlg::removeRow(int gridRow)
{
    removeGridCell(ui->gridLayout, gridRow, 1, true);
    removeGridCell(ui->gridLayout, gridRow, 0, true);
}

void tabTempDlg::removeProcessorRows()
{
    for (const int column : {1, 0}) {
        removeGridCell(ui->gridLayout, 3, column, true);
        removeGridCell(ui->gridLayout, 4, column, true);
    }
}

void tabTempDlg::refresh()
{
    if (ui->comboBoxSensor->currentIndex() == -1)
        return;
    QString text; // carried from sensor to sensor
    for (int i = 0; i < ui->comboBoxSensor->count(); ++i) {
        const int sensor = sensorIndex[std::size_t(i)];
        if (sensor == supervisorSensor)
            readFixedSensor(Diagnostics_getSSTemp, supervisor, "getSSTemp", text);
        else if (sensor == boardSensor)
            readFixedSensor(Diagnostics_getPCBTemp, board, "getPCBTemp", text);
        else
            readProcessorSensor(i, text);
        ui->editTemp->setText(text);
    }
}

void tabTempDlg::readFixedSensor(
    decltype(&Diagnostics_getSSTemp) query, const Row &row, const char *name, QString &text)
{
    std::int16_t celsius = 0;
    const auto code = query(diagnostics, &celsius);
    if (code == DEVICE_OK)
        text = temperatureText(celsius);
    else if (code == DEVICE_NOT_SUPPORTED)
        row.hide();
    else
        text = fieldErrorText(code, name);
    row.setText(text);
}

void tabTempDlg::readProcessorSensor(int entry, QString &text)
{
    const int sensor = sensorIndex[std::size_t(entry)];
    std::int16_t celsius = 0;
    std::int32_t kind = sensorKind[std::size_t(entry)];
    const auto code = Diagnostics_getPMTemp(
        diagnostics, std::uint8_t(sensor - firstProcessorSensor), &celsius, &kind);
    if (code == DEVICE_OK) {
        text = temperatureText(celsius);
    } else if (code == DEVICE_NOT_SUPPORTED) {
        processorBoard.hide();
        processor.hide();
        removeProcessorRows();
    } else {
        text = QStringLiteral("i:%1 sensorindex:%2 %3")
                   .arg(QString::number(entry), QString::number(sensor),
                       fieldErrorText(code, "getPMTemp"));
    }
    if (kind == SENSOR_CPU)
        processor.setText(text);
    else if (kind == SENSOR_BOARD)
        processorBoard.setText(text);
}
