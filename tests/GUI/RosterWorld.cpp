// SPDX-License-Identifier: MIT
#include "tests/GUI/RosterWorld.h"

#include "tests/support/Test.h"

#include "App/Environment.h"

namespace ZorvaneClient::Tests {

void stopClockAt(double seconds)
{
    const QDateTime start(QDate(2024, 5, 17), QTime(12, 0));
    const QDateTime moment = start.addMSecs(static_cast<qint64>(seconds * 1000));
    App::Environment::setClock([moment] { return moment; });
}

void runClock()
{
    App::Environment::setClock({});
}

int expireTimers(std::chrono::milliseconds interval)
{
    QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
    QList<QPointer<QObject>> owners;
    const QObjectList singleShots = dispatcher->children();
    for (QObject *object : singleShots)
        owners.append(object);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        const auto timers = window->findChildren<QTimer *>();
        for (QTimer *timer : timers)
            owners.append(timer);
    }
    int expired = 0;
    for (const QPointer<QObject> &owner : qAsConst(owners)) {
        if (!owner)
            continue;
        const auto timers = dispatcher->registeredTimers(owner);
        for (const QAbstractEventDispatcher::TimerInfo &timer : timers) {
            if (!owner || timer.interval != interval.count())
                continue;
            ++expired;
            QTimerEvent event(timer.timerId);
            QCoreApplication::sendEvent(owner, &event);
        }
    }
    return expired;
}

QString labelText(const QWidget *parent, const char *name)
{
    return parent->findChild<QLabel *>(QLatin1String(name))->text();
}

QImage labelPicture(const QWidget *parent, const char *name)
{
    const auto *label = parent->findChild<QLabel *>(QLatin1String(name));
    return label->pixmap(Qt::ReturnByValue).toImage();
}

QImage resourcePicture(const QString &path)
{
    return QPixmap(path).toImage();
}

QDrag *dragFrom(QWidget *widget, const QPoint &from, const QPoint &to)
{
    // A platform with drags of its own would wait for the button.
    QTimer::singleShot(0, widget, [] { QDrag::cancel(); });
    const QList<QDrag *> before = widget->window()->findChildren<QDrag *>();
    QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    const QList<QDrag *> after = widget->window()->findChildren<QDrag *>();
    for (QDrag *drag : after) {
        if (!before.contains(drag))
            return drag;
    }
    return nullptr;
}

} // namespace ZorvaneClient::Tests
