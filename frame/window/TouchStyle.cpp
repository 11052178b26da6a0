#include "frame/window/TouchStyle.h"

#include "frame/window/dialogs.h"

#include <QAbstractItemView>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QGraphicsEffect>
#include <QLabel>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextDocument>

namespace {

constexpr QSize boxButton(88, 44); // pixels, least size
constexpr int rowMargin = 6;       // pixels
constexpr int lightText = 160;     // grey value from which a text counts as light
constexpr QColor darkRim(0, 0, 0, 75);
constexpr QColor lightRim(255, 255, 255, 12); // the greys under dark texts need but little
// Together these are darkest beside the letters and fade three pixels away.
constexpr QPoint rimPlaces[] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1},
    {1, 1}, {-2, -1}, {2, -1}, {-2, 1}, {2, 1}, {-1, -2}, {1, -2}, {-1, 2}, {1, 2}, {0, 3}, {0, -3},
    {3, 0}, {-3, 0}};

/** A row of a drop-down list. Qt's own delegate would draw its text without a rim. */
class RowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &given,
        const QModelIndex &index) const override
    {
        QStyleOptionViewItem option = given;
        initStyleOption(&option, index);
        const bool isCurrent = option.state.testFlag(QStyle::State_Selected);
        QRect place = option.rect.adjusted(rowMargin, 0, -rowMargin, 0);
        if (isCurrent)
            painter->fillRect(option.rect, option.palette.highlight());
        if (!option.icon.isNull()) {
            const QSize size = option.decorationSize;
            option.icon.paint(painter, QRect(place.topLeft(), QSize(size.width(), place.height())));
            place.setLeft(place.left() + size.width() + rowMargin);
        }
        painter->setFont(option.font);
        option.widget->style()->drawItemText(painter, place, Qt::AlignVCenter, option.palette,
            option.state.testFlag(QStyle::State_Enabled),
            option.fontMetrics.elidedText(option.text, Qt::ElideRight, place.width()),
            isCurrent ? QPalette::HighlightedText : QPalette::Text);
    }
};

/** The rim for labels with rich text, which they draw by themselves, without asking the style. */
class RimEffect : public QGraphicsEffect
{
public:
    using QGraphicsEffect::QGraphicsEffect;

protected:
    void draw(QPainter *painter) override
    {
        QPoint place;
        const QPixmap text = sourcePixmap(Qt::LogicalCoordinates, &place, NoPad);
        QPixmap dark = text;
        QPainter dye(&dark);
        dye.setCompositionMode(QPainter::CompositionMode_SourceIn);
        dye.fillRect(dark.rect(), darkRim);
        dye.end();
        for (const QPoint &offset : rimPlaces)
            painter->drawPixmap(place + offset, dark);
        painter->drawPixmap(place, text);
    }
};

/** Qt's classes around a drop-down list have no headers. */
bool isDropDown(const QWidget *widget)
{
    return widget->inherits("QComboBoxPrivateContainer");
}

void useOwnRows(QAbstractItemView *list)
{
    if (!dynamic_cast<RowDelegate *>(list->itemDelegate()))
        list->setItemDelegate(new RowDelegate(list));
}

} // namespace

TouchStyle::TouchStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{}

void TouchStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (auto *area = qobject_cast<QAbstractScrollArea *>(widget))
        scrolling.equip(area);
    if (auto *box = qobject_cast<QComboBox *>(widget))
        useOwnRows(box->view());
    if (isDropDown(widget) || qobject_cast<QFileDialog *>(widget) ||
        qobject_cast<QColorDialog *>(widget))
        widget->installEventFilter(this);
    if (auto *label = qobject_cast<QLabel *>(widget); label && Qt::mightBeRichText(label->text()))
        label->setGraphicsEffect(new RimEffect);
}

// What these consist of is made right before they show.
bool TouchStyle::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show)
        return false;
    if (auto *files = qobject_cast<QFileDialog *>(watched))
        fitFileDialog(files);
    else if (auto *colours = qobject_cast<QColorDialog *>(watched))
        fitColorDialog(colours);
    else if (auto *list = watched->findChild<QAbstractItemView *>())
        useOwnRows(list);
    return false;
}

int TouchStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
    QStyleHintReturn *returnData) const
{
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

QSize TouchStyle::sizeFromContents(
    ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const
{
    const QSize own = QProxyStyle::sizeFromContents(type, option, size, widget);
    const bool isOfBox = type == CT_PushButton && widget &&
                         qobject_cast<const QDialogButtonBox *>(widget->parentWidget());
    return isOfBox ? own.expandedTo(boxButton) : own;
}

void TouchStyle::drawItemText(QPainter *painter, const QRect &place, int flags,
    const QPalette &palette, bool enabled, const QString &text, QPalette::ColorRole role) const
{
    const QColor colour = role == QPalette::NoRole ? painter->pen().color() : palette.color(role);
    const QPen pen = painter->pen();
    painter->setPen(qGray(colour.rgb()) >= lightText ? darkRim : lightRim);
    for (const QPoint &offset : rimPlaces)
        QProxyStyle::drawItemText(
            painter, place.translated(offset), flags, palette, enabled, text, QPalette::NoRole);
    painter->setPen(pen);
    QProxyStyle::drawItemText(painter, place, flags, palette, enabled, text, role);
}
