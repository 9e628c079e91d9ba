// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "App/Environment.h"

namespace ZorvaneClient::Tests {

/// The wall clock under a test's control, while it lives.
struct FakeClock {
    Q_DISABLE_COPY(FakeClock)
    explicit FakeClock(const QDateTime &start = QDateTime()) : time(start)
    {
        App::Environment::setClock([this] { return time; });
    }
    ~FakeClock() { App::Environment::setClock({}); }

    QDateTime now() const { return time; }
    void advance(int seconds) { time = time.addSecs(seconds); }

    QDateTime time;
};

/// Ends the wait of all timers of `owner` and its children that take so long, and tells how many
/// there were. Those of a single shot belong to the event dispatcher.
inline int expireTimers(std::chrono::milliseconds wait,
                        QObject *owner = QAbstractEventDispatcher::instance())
{
    int expired = 0;
    const QAbstractEventDispatcher &dispatcher = *QAbstractEventDispatcher::instance();
    const QObjectList objects = owner->findChildren<QObject *>() << owner;
    for (QObject *object : objects) {
        for (const auto &timer : dispatcher.registeredTimers(object)) {
            QTimerEvent event(timer.timerId);
            if (timer.interval == wait.count())
                expired += int(QCoreApplication::sendEvent(object, &event));
        }
    }
    return expired;
}

} // namespace ZorvaneClient::Tests
