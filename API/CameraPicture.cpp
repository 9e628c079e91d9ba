// SPDX-License-Identifier: MIT
// A camera's picture: how it is turned, and the last one that came, in memory and in the cache.
#include "API/Camera.h"
#include "API/CameraPrivate.h"
#include "API/CloudAPIClient.h"
#include "App/OwnerOnly.h"
#include "App/Settings.h"

namespace ZorvaneClient {
namespace API {

int Camera::rotation() const
{
    return d->rotation;
}

void Camera::setRotation(int angle)
{
    d->rotation = angle;
    showOrientation();

    if (d->kind == LocalCamera) {
        App::settings().setValue(d->rotationKey(), angle);
        return;
    }
    auto *client = new CloudAPIClient;
    connect(client, &CloudAPIClient::ok, client, &QObject::deleteLater);
    connect(client, &CloudAPIClient::error, client, &QObject::deleteLater);
    client->setCameraRotation(globalId(), angle);
}

bool Camera::isMirrored() const
{
    return d->mirror;
}

void Camera::setMirrored(bool mirror)
{
    d->mirror = mirror;
    showOrientation();
}

void Camera::showOrientation()
{
    d->preview = d->oriented(d->rawPreview);
    emit previewChanged(d->preview);
    emit orientationChanged();
}

bool Camera::hasPreview() const
{
    return !d->preview.isNull();
}

QPixmap Camera::preview()
{
    if (d->preview.isNull())
        d->preview = d->oriented(sourcePreview());
    return d->preview;
}

QPixmap Camera::sourcePreview()
{
    if (d->rawPreview.isNull())
        d->rawPreview.load(d->previewFile());
    return d->rawPreview;
}

void Camera::setPreview(QPixmap pixmap)
{
    d->rawPreview = pixmap;
    if (!pixmap.isNull()) {
        const QString file = d->previewFile();
        const App::OwnerOnlyFiles guard; // what cameras see is nobody else's business
        App::restrictToOwner(file);
        pixmap.save(file);
    }
    d->preview = d->oriented(d->rawPreview);
    emit previewChanged(d->preview);
}

} // namespace API
} // namespace ZorvaneClient
