// SPDX-License-Identifier: MIT
#include "GUI/ScreenSaverHold.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>

namespace ZorvaneClient {
namespace GUI {

namespace {

QDBusMessage callOf(const QString &method)
{
    const QString name = QStringLiteral("org.freedesktop.ScreenSaver");
    return QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          name, method);
}

void giveBack(uint cookie)
{
    QDBusMessage call = callOf(QStringLiteral("UnInhibit"));
    call << cookie;
    QDBusConnection::sessionBus().send(call);
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
    // Not a child: an answer that comes when this is gone is given back.
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
            [watcher, self = QPointer<ScreenSaverHold>(this)] {
                watcher->deleteLater();
                const QDBusPendingReply<uint> reply = *watcher;
                if (self)
                    self->answered(reply.isValid(), reply.isValid() ? reply.value() : 0);
                else if (reply.isValid())
                    giveBack(reply.value());
            });
}

void ScreenSaverHold::answered(bool isHeld, uint newCookie)
{
    state = isHeld ? State::Held : State::Free;
    cookie = newCookie;
    if (!isWanted)
        setHeld(false);
}

void ScreenSaverHold::release()
{
    state = State::Free;
    giveBack(cookie);
}

} // namespace GUI
} // namespace ZorvaneClient
