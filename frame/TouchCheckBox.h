#pragma once

#include <QCheckBox>

/**
 * A check box that a finger hits anywhere and Tab reaches always. A plain one with a style sheet
 * takes presses on its mark and its caption alone, however large the box around them is.
 */
class TouchCheckBox : public QCheckBox
{
public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }

    /** Of boxes that exclude each other Qt leaves one to Tab, as of radio buttons, which these
     * don't look like. */
    void focusInEvent(QFocusEvent *event) override
    {
        QCheckBox::focusInEvent(event);
        const auto boxes = parentWidget()->findChildren<QCheckBox *>();
        for (QCheckBox *box : boxes)
            box->setFocusPolicy(Qt::StrongFocus);
    }
};
