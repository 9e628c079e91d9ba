// SPDX-License-Identifier: MIT
// Which cameras the strip shows, and how it follows their records.
#include "GUI/Timeline.h"

#include "API/Camera.h"
#include "GUI/TimelinePrivate.h"

namespace ZorvaneClient {
namespace GUI {

void Timeline::setActiveCameraId(API::camera_global_id_t id)
{
    d->activeCameraId = API::camera_global_id_t();
    if (!d->cameras.contains(id))
        return;
    d->activeCameraId = id;
    redrawRecords();
}

bool Timeline::hasCamera(API::camera_global_id_t id) const
{
    return d->cameras.contains(id);
}

void Timeline::removeCamera(API::camera_global_id_t id)
{
    if (const API::CameraPtr camera = d->cameras.take(id))
        disconnect(camera.data(), nullptr, this, nullptr);
    if (id == d->activeCameraId)
        d->activeCameraId = API::camera_global_id_t();
    updateRecords();
}

int Timeline::cameraCount() const
{
    return d->cameras.size();
}

API::CameraPtr Timeline::activeCamera() const
{
    return d->activeCamera();
}

bool Timeline::canExport() const
{
    return d->canExport();
}

void Timeline::clear()
{
    for (const API::CameraPtr &camera : qAsConst(d->cameras))
        disconnect(camera.data(), nullptr, this, nullptr);
    d->activeCameraId = API::camera_global_id_t();
    d->cameras.clear();
    updateRecords();
}

void Timeline::addCamera(API::CameraPtr camera)
{
    if (!camera || d->cameras.contains(camera->globalId()))
        return;
    d->cameras.insert(camera->globalId(), camera);
    showText(tr("Loading records..."));
    connect(camera.data(), &API::Camera::recordsChanged, this, &Timeline::setupArchives);
    connect(camera.data(), &API::Camera::recordsError, this, &Timeline::archivesError);
    camera->updateTimeline(d->date);
}

void Timeline::updateCameras()
{
    const auto cameras = d->cameras;
    for (const API::CameraPtr &camera : cameras)
        camera->updateTimeline(d->date);
}

void Timeline::setupArchives(QDate date)
{
    hideText();
    const auto *camera = qobject_cast<API::Camera *>(sender());
    if (!camera)
        return;
    if (!camera->isArchiveShared()) {
        showText(tr("Archive is not shared"));
    } else if (camera->hasRecords(date)) {
        updateRecords();
    } else {
        showText(tr("No records"));
    }
}

void Timeline::archivesError()
{
    showText(tr("Cannot load records"));
}

Playlist Timeline::playlistForCameras(QDateTime position)
{
    return d->playlistForCameras(position);
}

void Timeline::updateRecords()
{
    redrawRecords();
    emit recordsUpdated();
}

void Timeline::timerEvent(QTimerEvent *)
{
    updateCameras();
}

} // namespace GUI
} // namespace ZorvaneClient
