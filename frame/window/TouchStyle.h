#pragma once

#include "frame/window/FingerScrolling.h"

#include <QProxyStyle>

/**
 * What the style sheet can't say of the look for fingers and sunlight. Light captions get a dark
 * rim, drop-down lists rows of their own, boxes large buttons without pictures; lists and texts
 * scroll by a finger. Each widget is equipped once it shows. Main thread only.
 */
class TouchStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /** Over Qt's Fusion. */
    TouchStyle();

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
        QStyleHintReturn *returnData) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
        const QWidget *widget) const override;
    void drawItemText(QPainter *painter, const QRect &place, int flags, const QPalette &palette,
        bool enabled, const QString &text, QPalette::ColorRole role) const override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    FingerScrolling scrolling;
};
