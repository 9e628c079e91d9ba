// SPDX-License-Identifier: MIT
#include "tests/GUI/RosterWorld.h"

#include <QAbstractEventDispatcher>
#include <QDrag>
#include <QLabel>
#include <QMouseEvent>
#include <QtTest>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"
#include "App/Environment.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

QVariantMap cameraJson(const WorldCamera &camera)
{
    QVariantMap json{{QStringLiteral("id"), camera.id},
                     {QStringLiteral("name"), camera.name},
                     {QStringLiteral("online"), camera.online},
                     {QStringLiteral("rights"), QStringList{QStringLiteral("live")}}};
    if (camera.paid) {
        const QVariantMap active{{QStringLiteral("active"), true}};
        json.insert(QStringLiteral("services"), QVariantMap{{QStringLiteral("enabled"), active}});
    }
    return json;
}

QVariantMap serverJson(const WorldServer &server)
{
    QVariantMap cameras;
    for (const WorldCamera &camera : server.cameras)
        cameras.insert(QString::number(camera.id), cameraJson(camera));
    const QString buildType =
        server.isCamera ? QStringLiteral("ip-camera") : QStringLiteral("server");
    return {{QStringLiteral("id"), server.id},
            {QStringLiteral("name"), server.alias},
            {QStringLiteral("online"), server.online},
            {QStringLiteral("info"), QVariantMap{{QStringLiteral("build_type"), buildType}}},
            {QStringLiteral("cameras"), cameras}};
}

} // namespace

void setWorld(const QList<WorldServer> &world)
{
    QVariantMap roster;
    for (const WorldServer &server : world)
        roster.insert(server.id, serverJson(server));
    API::CloudAPIClient client;
    QMetaObject::invokeMethod(&client, "onNewRosterReceived", Qt::DirectConnection,
                              Q_ARG(QVariant, QVariant(roster)));
}

API::ServerPtr worldServer(const QString &id)
{
    return API::CloudAPIClient::serverList().value(id);
}

API::CameraPtr worldCamera(const QString &server, int camera)
{
    const API::ServerPtr owner = worldServer(server);
    return owner ? owner->cameras().value(camera) : API::CameraPtr();
}

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

} // namespace Tests
} // namespace ZorvaneClient
