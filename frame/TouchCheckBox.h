#pragma once

#include <QCheckBox>

/**
 * A check box that a finger hits anywhere. A plain one with a style sheet takes presses on its mark
 * and its caption alone, however large the box around them is.
 */
class TouchCheckBox : public QCheckBox
{
public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
};
