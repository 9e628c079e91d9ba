// SPDX-License-Identifier: MIT
#include "GUI/ScreenSaverHold.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace ZorvaneClient {
namespace GUI {

namespace {

QDBusMessage callOf(const QString &method)
{
    const QString name = QStringLiteral("org.freedesktop.ScreenSaver");
    return QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          name, method);
}

} // namespace

ScreenSaverHold::ScreenSaverHold(QObject *parent) : QObject(parent)
{
}

ScreenSaverHold::~ScreenSaverHold()
{
    if (state == State::Held)
        release();
}

void ScreenSaverHold::setHeld(bool held)
{
    isWanted = held;
    if (isWanted && state == State::Free)
        ask();
    else if (!isWanted && state == State::Held)
        release();
}

void ScreenSaverHold::ask()
{
    state = State::Asking;
    QDBusMessage call = callOf(QStringLiteral("Inhibit"));
    call << QCoreApplication::applicationName() << tr("Video is playing");
    auto *watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> reply = *watcher;
        state = reply.isValid() ? State::Held : State::Free;
        cookie = reply.isValid() ? reply.value() : 0;
        if (!isWanted)
            setHeld(false);
    });
}

void ScreenSaverHold::release()
{
    state = State::Free;
    QDBusMessage call = callOf(QStringLiteral("UnInhibit"));
    call << cookie;
    QDBusConnection::sessionBus().send(call);
}

} // namespace GUI
} // namespace ZorvaneClient
