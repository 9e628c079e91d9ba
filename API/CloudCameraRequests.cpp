// SPDX-License-Identifier: MIT
// What CloudAPIClient asks and tells about single cameras.
#include "API/CloudAPIClient.h"

#include <QDebug>
#include <QPointer>

#include "API/CloudData.h"
#include "API/CloudExchange.h"
#include "API/PreviewImage.h"
#include "API/RestClient.h"
#include "API/StreamerClient.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;
using Internal::OnError;
using Internal::watchExchange;

namespace {

constexpr int previewQuality = 0;

using Received = void (CloudAPIClient::*)(QVariant);
using Failed = void (CloudAPIClient::*)();

// A LAN server takes its password in the place of a session.
QVariantMap archiveParams(const camera_global_id_t &camera, uint startTime, uint endTime,
                          const QString &apiHost, const QString &password)
{
    return {
        {QStringLiteral("server"), camera.server},
        {QStringLiteral("camera"), camera.camera},
        {QStringLiteral("sessionId"), apiHost.isEmpty() ? cloudData.sessionId : password},
        {QStringLiteral("startTime"), startTime},
        {QStringLiteral("endTime"), endTime},
    };
}

/// Asks the LAN server, or the service where there is none, and tells `caller` by these signals.
void askArchive(CloudAPIClient *caller, const QString &method, const QVariantMap &params,
                const QString &apiHost, int apiPort, Received received, Failed failed)
{
    const QPointer<CloudAPIClient> self(caller);
    auto *client = apiHost.isEmpty() ? new StreamerClient : new StreamerClient(apiHost, apiPort);
    watchExchange(
        client, OnError::Keep,
        [self, received](const QVariant &response) {
            if (self)
                emit(self->*received)(response);
        },
        [self, failed](int, int) {
            if (self)
                emit(self->*failed)();
        });
    client->request(method, params, true);
}

} // namespace

void CloudAPIClient::requestPreview(server_id_t serverID, camera_id_t cameraID)
{
    const QPointer<CloudAPIClient> self(this);
    auto *client = new StreamerClient;
    watchExchange(
        client, OnError::Keep,
        [self](const QVariant &response) {
            if (self)
                emit self->previewReceived(decodePreview(response.toByteArray(), "JPEG"));
        },
        [self](int, int) {
            if (self)
                emit self->previewError();
        });
    const QVariantMap params{
        {QStringLiteral("server"), serverID},
        {QStringLiteral("camera"), cameraID},
        {QStringLiteral("sessionId"), cloudData.sessionId},
        {QStringLiteral("q"), previewQuality},
    };
    client->request(QStringLiteral("preview/live"), params, false);
}

void CloudAPIClient::getTimeline(camera_global_id_t cameraID, uint startTime, uint endTime,
                                 QString apiHost, int apiPort, QString password)
{
    askArchive(this, QStringLiteral("archive/list"),
               archiveParams(cameraID, startTime, endTime, apiHost, password), apiHost, apiPort,
               &CloudAPIClient::archivesReceived, &CloudAPIClient::archivesError);
}

void CloudAPIClient::getCalendar(camera_global_id_t cameraID, uint startTime, uint endTime,
                                 QString apiHost, int apiPort, QString password)
{
    askArchive(this, QStringLiteral("archive/days"),
               archiveParams(cameraID, startTime, endTime, apiHost, password), apiHost, apiPort,
               &CloudAPIClient::archiveDatesReceived, &CloudAPIClient::archiveDatesError);
}

void CloudAPIClient::setCameraRotation(camera_global_id_t cameraId, int angle)
{
    const QPointer<CloudAPIClient> self(this);
    auto *client = new RestClient;
    watchExchange(
        client, OnError::Release,
        [self](const QVariant &) {
            qDebug() << "Rotation saved to API";
            if (self)
                emit self->ok();
        },
        [self](int errorCode, int httpStatus) {
            qWarning() << "Error saving rotation" << errorCode << httpStatus;
            if (self)
                emit self->error();
        });
    const QVariantMap params{
        {QStringLiteral("sessionId"), cloudData.sessionId},
        {QStringLiteral("degrees"), angle},
    };
    client->post(QStringLiteral("/public/servers/%1/cameras/%2/rotation")
                     .arg(cameraId.server, QString::number(cameraId.camera)),
                 params);
}

} // namespace API
} // namespace ZorvaneClient
