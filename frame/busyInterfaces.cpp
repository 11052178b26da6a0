#include "frame/busyInterfaces.h"

#include "frame/WaitNotice.h"

#include <QAccessibleWidget>
#include <QMainWindow>

namespace {

class BusyInterface : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = WaitNotice::isBusy(widget()->window());
        return state;
    }
};

QAccessibleInterface *busyInterface(const QString &, QObject *object)
{
    if (auto *window = qobject_cast<QMainWindow *>(object))
        return new BusyInterface(window, QAccessible::Window);
    auto *strip = qobject_cast<QWidget *>(object);
    if (strip && strip->objectName() == WaitNotice::stripName())
        return new BusyInterface(strip, QAccessible::AlertMessage);
    return nullptr;
}

} // namespace

void installBusyInterfaces()
{
    QAccessible::installFactory(busyInterface);
}
