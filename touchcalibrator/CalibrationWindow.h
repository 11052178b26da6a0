#pragma once

#include <QList>
#include <QPointF>
#include <QTimer>
#include <QWidget>

/**
 * The calibration of the virtual unit's touch screen: shows its targets one after the other, takes
 * a tap on each, tells how far the taps were off on average, and closes. Escape and a minute
 * without a tap close it before that. Nothing is stored: a virtual screen is never off.
 */
class CalibrationWindow : public QWidget
{
    Q_OBJECT

public:
    enum class Points { Five, Thirteen };

    explicit CalibrationWindow(Points points, QWidget *parent = nullptr);

    /** Centres of all targets in the window's present size, in the order of the taps. */
    QList<QPointF> targets() const;
    /** How many of them have been hit. */
    int hits() const { return int(deviations.size()); }
    bool isComplete() const { return hits() == places.size(); }
    /** Distance of taps from their targets in pixels; 0 without taps. */
    double meanDeviation() const;

signals:
    /** The window is about to close, by a complete calibration or without one. */
    void ended(bool complete);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    QString instruction() const;
    void paintTexts(QPainter &painter) const;
    void paintTarget(QPainter &painter, QPointF centre, int number) const;

    QList<QPointF> places;    ///< in fractions of width and height
    QList<double> deviations; ///< of the taps so far, in pixels
    bool missed = false;      ///< whether the last tap was too far off to count
    QTimer patience{this};
};
