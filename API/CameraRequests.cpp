// SPDX-License-Identifier: MIT
#include <QDebug>

#include "API/Camera.h"
#include "API/CameraPrivate.h"
#include "API/CloudAPIClient.h"
#include "API/PreviewImage.h"
#include "API/StreamerClient.h"

// What a camera asks for over the network. Each request has a client of its own without a
// parent. Its handlers release it; they end with the signal that tells of the outcome, as a
// receiver may let go of the camera.

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
    d->keep(connect(client, &CloudAPIClient::previewReceived, client,
                    [this, client](const QPixmap &pixmap) {
                        client->deleteLater();
                        setPreview(pixmap);
                    }));
    d->keep(connect(client, &CloudAPIClient::previewError, client, [this, client] {
        qDebug() << "Error downloading preview";
        client->deleteLater();
        setPreview(QPixmap());
    }));
    client->requestPreview(d->serverId, d->id);
}

void Camera::updateLocalPreview()
{
    const Internal::Endpoint asked = d->endpoint();
    auto *client = releasedWith(this, new StreamerClient(asked.host, asked.port));
    d->keep(connect(client, &StreamerClient::responseReceived, client,
                    [this, client](const QVariant &response) {
                        client->deleteLater();
                        setPreview(decodePreview(response.toByteArray()));
                    }));
    d->keep(connect(client, &StreamerClient::error, client, [this, client] {
        qDebug() << "Error downloading preview";
        client->deleteLater();
        setPreview(QPixmap());
    }));

    QVariantMap params;
    params.insert(QStringLiteral("server"), 1);
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
    d->keep(connect(client, &CloudAPIClient::archivesReceived, client,
                    [this, client, date](const QVariant &reply) {
                        client->deleteLater();
                        d->records[date] = archiveRecordsOfDay(reply, date);
                        emit recordsChanged(date);
                    }));
    d->keep(connect(client, &CloudAPIClient::archivesError, client, [this, client] {
        qDebug() << "Error downloading archive list";
        client->deleteLater();
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
    d->keep(connect(client, &CloudAPIClient::archiveDatesReceived, client,
                    [this, client, start, end](const QVariant &reply) {
                        client->deleteLater();
                        const QMap<QDate, int> counts = recordCountsByDay(reply);
                        for (auto it = counts.begin(); it != counts.end(); ++it)
                            d->calendar.insert(it.key(), it.value());
                        emit calendarChanged(start, end);
                    }));
    d->keep(connect(client, &CloudAPIClient::archiveDatesError, client, [client] {
        qDebug() << "Error downloading calendar";
        client->deleteLater();
    }));

    const Internal::Endpoint asked = d->endpoint();
    client->getCalendar(globalId(), firstSecondOfDay(start), lastSecondOfDay(end), asked.host,
                        asked.port, asked.password);
}

} // namespace API
} // namespace ZorvaneClient
