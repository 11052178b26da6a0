#include "bench/firstpaint.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <utility>

namespace {

class FirstPaint : public QObject
{
public:
    explicit FirstPaint(std::function<void()> wanted)
        : QObject(qApp)
        , action(std::move(wanted))
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() != QEvent::Paint || !widget || !widget->isWindow())
            return false;
        // The widgets of the window paint in the same go, before the event loop has its turn.
        QTimer::singleShot(0, qApp, action);
        deleteLater();
        qApp->removeEventFilter(this);
        return false;
    }

private:
    std::function<void()> action;
};

} // namespace

void afterFirstPaint(std::function<void()> action)
{
    new FirstPaint(std::move(action)); // the application object owns it
}
