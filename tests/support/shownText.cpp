#include "tests/support/shownText.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSlider>
#include <QSpinBox>
#include <QTextEdit>

namespace support {

QString shownText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text() + (button->isChecked() ? QStringLiteral(" on") : QString());
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget))
        return edit->text();
    if (const auto *box = qobject_cast<const QComboBox *>(widget))
        return box->currentText();
    if (const auto *slider = qobject_cast<const QSlider *>(widget))
        return QString::number(slider->value());
    if (const auto *bar = qobject_cast<const QProgressBar *>(widget))
        return QString::number(bar->value());
    if (const auto *spin = qobject_cast<const QAbstractSpinBox *>(widget))
        return spin->text();
    if (const auto *text = qobject_cast<const QTextEdit *>(widget))
        return text->toPlainText();
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(widget))
        return text->toPlainText();
    return {};
}

} // namespace support
