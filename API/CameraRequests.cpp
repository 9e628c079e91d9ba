// SPDX-License-Identifier: MIT
// What a camera asks for over the network. Each request has a client of its own without a parent.
#include <QDebug>

#include "API/Camera.h"
#include "API/CameraPrivate.h"
#include "API/CloudAPIClient.h"
#include "API/PreviewImage.h"
#include "API/StreamerClient.h"

namespace ZorvaneClient {
namespace API {

namespace {

/// A client whose camera is gone hears of no reply, and goes too.
template <typename Client>
Client *releasedWith(const Camera *camera, Client *client)
{
    QObject::connect(camera, &QObject::destroyed, client, &QObject::deleteLater);
    return client;
}

/// Whatever comes of a request releases its client. `handle` is called last, and ends with the
/// signal that tells of the outcome, as a receiver may let go of the camera.
template <typename Client, typename Signal, typename Handler>
QMetaObject::Connection onOutcome(Client *client, Signal signal, Handler handle)
{
    return QObject::connect(client, signal, client,
                            [client, handle](const auto &...values) -> void {
                                client->deleteLater();
                                handle(values...);
                            });
}

void losePreview(Camera *camera)
{
    qDebug() << "Error downloading preview";
    camera->setPreview(QPixmap());
}

} // namespace

void Camera::updatePreview()
{
    if (d->kind == LocalCamera)
        updateLocalPreview();
    else
        updateCloudPreview();
}

void Camera::updateCloudPreview()
{
    auto *client = releasedWith(this, new CloudAPIClient);
    d->keep(onOutcome(client, &CloudAPIClient::previewReceived,
                      [this](const QPixmap &pixmap) { setPreview(pixmap); }));
    d->keep(onOutcome(client, &CloudAPIClient::previewError, [this] { losePreview(this); }));
    client->requestPreview(d->serverId, d->id);
}

void Camera::updateLocalPreview()
{
    const Internal::Endpoint asked = d->endpoint();
    auto *client = releasedWith(this, new StreamerClient(asked.host, asked.port));
    d->keep(onOutcome(client, &StreamerClient::responseReceived, [this](const QVariant &response) {
        setPreview(decodePreview(response.toByteArray()));
    }));
    d->keep(onOutcome(client, &StreamerClient::error, [this](int, int) { losePreview(this); }));

    QVariantMap params;
    params.insert(QStringLiteral("server"), Internal::localServerNumber);
    params.insert(QStringLiteral("camera"), d->id);
    params.insert(QStringLiteral("sessionId"), asked.password);
    client->request(QStringLiteral("preview/live"), params, false);
}

void Camera::updateTimeline(QDate date)
{
    if (!isArchiveShared()) {
        d->records.clear();
        emit recordsChanged(date);
        return;
    }
    auto *client = releasedWith(this, new CloudAPIClient);
    d->keep(
        onOutcome(client, &CloudAPIClient::archivesReceived, [this, date](const QVariant &reply) {
            d->records[date] = archiveRecordsOfDay(reply, date);
            emit recordsChanged(date);
        }));
    d->keep(onOutcome(client, &CloudAPIClient::archivesError, [this] {
        qDebug() << "Error downloading archive list";
        emit recordsError();
    }));

    const Internal::Endpoint asked = d->endpoint();
    client->getTimeline(globalId(), firstSecondOfDay(date), lastSecondOfDay(date), asked.host,
                        asked.port, asked.password);
}

void Camera::updateCalendar(QDate start, QDate end)
{
    if (!isArchiveShared()) {
        d->calendar.clear();
        return;
    }
    auto *client = releasedWith(this, new CloudAPIClient);
    d->keep(onOutcome(client, &CloudAPIClient::archiveDatesReceived,
                      [this, start, end](const QVariant &reply) {
                          const QMap<QDate, int> counts = recordCountsByDay(reply);
                          for (auto it = counts.begin(); it != counts.end(); ++it)
                              d->calendar.insert(it.key(), it.value());
                          emit calendarChanged(start, end);
                      }));
    d->keep(onOutcome(client, &CloudAPIClient::archiveDatesError,
                      [] { qDebug() << "Error downloading calendar"; }));

    const Internal::Endpoint asked = d->endpoint();
    client->getCalendar(globalId(), firstSecondOfDay(start), lastSecondOfDay(end), asked.host,
                        asked.port, asked.password);
}

} // namespace API
} // namespace ZorvaneClient
