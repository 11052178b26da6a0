#include "touchcalibrator/CalibrationWindow.h"

#include "frame/qtVersions.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLineF>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <cstddef>
#include <numeric>

namespace {

constexpr double reach = 60;          // pixels from a target within which a tap is meant for it
constexpr double ring = 22;           // radius of a target in pixels
constexpr int showResult = 2000;      // milliseconds
constexpr int waitForTap = 60 * 1000; // milliseconds

constexpr QColor amber(255, 194, 66);
constexpr QColor dim(120, 120, 120);

constexpr QPointF corners[] = {{0.1, 0.1}, {0.9, 0.1}, {0.9, 0.9}, {0.1, 0.9}};
constexpr QPointF edges[] = {{0.5, 0.1}, {0.9, 0.5}, {0.5, 0.9}, {0.1, 0.5}};
constexpr QPointF quarters[] = {{0.3, 0.3}, {0.7, 0.3}, {0.7, 0.7}, {0.3, 0.7}};

template <std::size_t count>
void append(QList<QPointF> &places, const QPointF (&more)[count])
{
    for (const QPointF &place : more)
        places << place;
}

QList<QPointF> placesOf(CalibrationWindow::Points points)
{
    QList<QPointF> places;
    append(places, corners);
    if (points == CalibrationWindow::Points::Thirteen) {
        append(places, edges);
        append(places, quarters);
    }
    return places << QPointF(0.5, 0.5);
}

} // namespace

CalibrationWindow::CalibrationWindow(Points points, QWidget *parent)
    : QWidget(parent)
    , places(placesOf(points))
{
    setObjectName(QStringLiteral("calibration"));
    setWindowTitle(tr("Touch calibration"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
    patience.setSingleShot(true);
    connect(&patience, &QTimer::timeout, this, &QWidget::close);
    patience.start(waitForTap);
}

QList<QPointF> CalibrationWindow::targets() const
{
    QList<QPointF> centres;
    for (const QPointF &place : places)
        centres << QPointF(place.x() * width(), place.y() * height());
    return centres;
}

double CalibrationWindow::meanDeviation() const
{
    if (deviations.isEmpty())
        return 0;
    return std::accumulate(deviations.begin(), deviations.end(), 0.0) / double(hits());
}

void CalibrationWindow::mousePressEvent(QMouseEvent *event)
{
    if (isComplete())
        return;
    const QPointF tap = qtVersions::positionOf(*event);
    const double deviation = QLineF(targets().at(hits()), tap).length();
    missed = deviation > reach;
    if (!missed)
        deviations << deviation;
    patience.start(isComplete() ? showResult : waitForTap);
    update();
}

void CalibrationWindow::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
}

void CalibrationWindow::closeEvent(QCloseEvent *event)
{
    patience.stop();
    emit ended(isComplete());
    QWidget::closeEvent(event);
}

QString CalibrationWindow::instruction() const
{
    if (isComplete())
        return tr("Calibration complete. Mean deviation: %1 pixels")
            .arg(meanDeviation(), 0, 'f', 1);
    if (missed)
        return tr("Too far off. Touch the centre of the amber target");
    return tr("Touch the centre of the amber target");
}

void CalibrationWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient ground(0, 0, 0, height());
    ground.setColorAt(0, QColor(60, 60, 60));
    ground.setColorAt(1, QColor(25, 23, 28));
    painter.fillRect(rect(), ground);
    const QList<QPointF> centres = targets();
    for (int number = 0; number < centres.size(); ++number)
        paintTarget(painter, centres.at(number), number);
    paintTexts(painter);
}

void CalibrationWindow::paintTarget(QPainter &painter, QPointF centre, int number) const
{
    const bool done = number < hits();
    const bool next = number == hits();
    QPen pen(next ? amber : dim, next ? 3 : 1.5);
    pen.setCapStyle(Qt::RoundCap);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    if (done) {
        painter.drawPolyline(
            QPolygonF({centre + QPointF(-9, 0), centre + QPointF(-3, 7), centre + QPointF(9, -7)}));
        return;
    }
    painter.drawEllipse(centre, ring, ring);
    painter.drawLine(centre - QPointF(ring + 8, 0), centre + QPointF(ring + 8, 0));
    painter.drawLine(centre - QPointF(0, ring + 8), centre + QPointF(0, ring + 8));
}

// Between the rows of targets, where no target is ever hidden.
void CalibrationWindow::paintTexts(QPainter &painter) const
{
    QFont font(QStringLiteral("Arial"));
    font.setBold(true);
    font.setPixelSize(qBound(14, height() / 26, 28));
    painter.setFont(font);
    painter.setPen(missed ? amber : QColor(Qt::white));
    painter.drawText(
        QRectF(0, 0.15 * height(), width(), 0.1 * height()), Qt::AlignCenter, instruction());
    font.setPixelSize(qBound(12, height() / 34, 20));
    painter.setFont(font);
    painter.setPen(QColor(190, 190, 190));
    if (isComplete())
        return;
    painter.drawText(QRectF(0, 0.57 * height(), width(), 0.065 * height()), Qt::AlignCenter,
        tr("Target %1 of %2. Escape cancels").arg(hits() + 1).arg(places.size()));
}
