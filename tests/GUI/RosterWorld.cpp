// SPDX-License-Identifier: MIT
#include "tests/GUI/RosterWorld.h"

#include "API/CloudAPIClient.h"
#include "App/Environment.h"

namespace ZorvaneClient::Tests {

void stopClockAt(double seconds)
{
    const QDateTime start(QDate(2024, 5, 17), QTime(12, 0));
    const QDateTime moment = start.addMSecs(static_cast<qint64>(seconds * 1000));
    App::Environment::setClock([moment] { return moment; });
}

int expireTimers(std::chrono::milliseconds interval)
{
    QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
    // The dispatcher's children are the single shots.
    QObjectList owners = dispatcher->children();
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        for (QTimer *timer : window->findChildren<QTimer *>())
            owners.append(timer);
    }
    int expired = 0;
    for (QObject *owner : qAsConst(owners)) {
        for (const auto &timer : dispatcher->registeredTimers(owner)) {
            if (timer.interval != interval.count())
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
    const auto *label = parent->findChild<QLabel *>(QLatin1String(name));
    const QString marked = label->selectedText();
    if (marked.isEmpty())
        return label->text();
    return label->text().replace(label->selectionStart(), marked.size(), '[' + marked + ']');
}

QDrag *dragTo(QWidget *widget, const QPoint &to)
{
    // A platform with drags of its own would wait for the button.
    QTimer::singleShot(0, widget, [] { QDrag::cancel(); });
    const int before = widget->window()->findChildren<QDrag *>().size();
    QMouseEvent move(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    const QList<QDrag *> drags = widget->window()->findChildren<QDrag *>();
    return drags.size() > before ? drags.last() : nullptr;
}

void RosterTest::init()
{
    stopClockAt(0);
    service.reset();
}

void RosterTest::cleanup()
{
    setWorld({});
    QFile::remove("local_roster.txt"_s);
    API::CloudAPIClient().loadLocalRoster();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace ZorvaneClient::Tests
