// SPDX-License-Identifier: MIT
// What CloudAPIClient asks and tells about single cameras.
#include "API/CloudAPIClient.h"

#include <QDebug>
#include <QPointer>

#include "API/CloudData.h"
#include "API/CloudExchange.h"
#include "API/Endpoint.h"
#include "API/PreviewImage.h"
#include "API/RestClient.h"
#include "API/StreamQuality.h"
#include "API/StreamerClient.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;
using Internal::Endpoint;
using Internal::OnError;
using Internal::watchExchange;

namespace {

constexpr int previewQuality = LowQuality;

/// The signals that tell of an exchange.
struct Outcome {
    void (CloudAPIClient::*received)(QVariant);
    void (CloudAPIClient::*failed)();
};

QVariantMap archiveParams(const camera_global_id_t &camera, uint startTime, uint endTime,
                          const Endpoint &asked)
{
    return {
        {QStringLiteral("server"), camera.server},
        {QStringLiteral("camera"), camera.camera},
        {QStringLiteral("sessionId"), asked.isService() ? cloudData.sessionId : asked.password},
        {QStringLiteral("startTime"), startTime},
        {QStringLiteral("endTime"), endTime},
    };
}

void askArchive(CloudAPIClient *caller, const Endpoint &asked, const QString &command,
                const QVariantMap &params, const Outcome &outcome)
{
    const QPointer<CloudAPIClient> self(caller);
    auto *client =
        asked.isService() ? new StreamerClient : new StreamerClient(asked.host, asked.port);
    watchExchange(
        client, OnError::Keep,
        [self, outcome](const QVariant &response) {
            if (self)
                emit(self->*outcome.received)(response);
        },
        [self, outcome](int, int) {
            if (self)
                emit(self->*outcome.failed)();
        });
    client->request(command, params, true);
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
    const Endpoint asked{apiHost, apiPort, password};
    askArchive(this, asked, QStringLiteral("archive/list"),
               archiveParams(cameraID, startTime, endTime, asked),
               {&CloudAPIClient::archivesReceived, &CloudAPIClient::archivesError});
}

void CloudAPIClient::getCalendar(camera_global_id_t cameraID, uint startTime, uint endTime,
                                 QString apiHost, int apiPort, QString password)
{
    const Endpoint asked{apiHost, apiPort, password};
    askArchive(this, asked, QStringLiteral("archive/days"),
               archiveParams(cameraID, startTime, endTime, asked),
               {&CloudAPIClient::archiveDatesReceived, &CloudAPIClient::archiveDatesError});
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
