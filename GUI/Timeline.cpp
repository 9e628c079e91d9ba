// SPDX-License-Identifier: MIT
#include "GUI/Timeline.h"

#include <QPainter>
#include <QVariantAnimation>

#include <chrono>

#include "API/Camera.h"
#include "GUI/StyleBackground.h"
#include "GUI/TimelinePainter.h"
#include "GUI/TimelinePrivate.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds refreshInterval = 120000ms;
constexpr int scrollNotch = 120;
constexpr qreal lastStep = 0.001;

QVariant timeBetween(const QDateTime &from, const QDateTime &to, qreal progress)
{
    if (1.0 - progress < lastStep)
        return to;
    return from.addSecs(static_cast<int>(static_cast<qreal>(from.secsTo(to)) * progress));
}

void registerTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<Playlist>("Playlist");
        qRegisterAnimationInterpolator<QDateTime>(timeBetween);
        return true;
    }();
    Q_UNUSED(registered)
}

} // namespace

Timeline::Timeline(QDate date, QWidget *parent)
    : QWidget(parent), d(QSharedPointer<Internal::TimelinePrivate>::create(this, date))
{
    setFixedHeight(Internal::timelineHeight);
    setStyleSheet(QStringLiteral("background-color: rgb(41, 44, 49);"));
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setMouseTracking(true);
    registerTypes();
    startTimer(refreshInterval);
}

Timeline::~Timeline() = default;

Timeline::TimeFormat Timeline::timeFormat() const
{
    return d->timeFormat;
}

void Timeline::setTimeFormat(TimeFormat format)
{
    d->timeFormat = format;
    update();
}

QDateTime Timeline::currentValue() const
{
    return d->currentValue;
}

void Timeline::setCurrentValue(QDateTime value)
{
    d->currentValue = value;
    update();
}

QDateTime Timeline::startValue() const
{
    return d->startValue;
}

void Timeline::setStartValue(QDateTime value)
{
    d->startValue = value;
    d->clampWindow();
    update();
}

QDateTime Timeline::endValue() const
{
    return d->endValue;
}

void Timeline::setEndValue(QDateTime value)
{
    d->endValue = value;
    d->clampWindow();
    update();
}

bool Timeline::sliderVisible() const
{
    return d->sliderVisible;
}

void Timeline::setSliderVisible(bool visible)
{
    d->sliderVisible = visible;
    update();
}

void Timeline::setActiveCameraId(API::camera_global_id_t id)
{
    d->activeCameraId = API::camera_global_id_t();
    if (!d->cameras.contains(id))
        return;
    d->activeCameraId = id;
    d->dirty = true;
    update();
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

void Timeline::addMSecs(qlonglong msecs)
{
    d->currentValue = d->currentValue.addMSecs(msecs);
    update();
}

void Timeline::zoomIn()
{
    zoomAtCentre(1);
}

void Timeline::zoomOut()
{
    zoomAtCentre(-1);
}

void Timeline::zoom(int level)
{
    const int direction = level > d->zoomLevel ? 1 : -1;
    const auto isReached = [this, level, direction] {
        return direction > 0 ? level <= d->zoomLevel : level >= d->zoomLevel;
    };
    bool moves = true;
    // A window that stays as it was would do so for ever.
    while (!isReached() && moves) {
        const QDateTime start = d->startValue;
        const QDateTime end = d->endValue;
        zoomAtCentre(direction);
        moves = d->startValue != start || d->endValue != end;
    }
}

void Timeline::zoomAtCentre(int direction)
{
    if (d->zoomStep(direction, d->timeAt(width() / 2)))
        emit zoomed(d->zoomLevel);
    d->dirty = true;
    update();
}

void Timeline::scrollLeft()
{
    scroll(scrollNotch);
}

void Timeline::scrollRight()
{
    scroll(-scrollNotch);
}

void Timeline::scroll(int delta)
{
    d->scrollBy(delta);
    d->dirty = true;
    update();
}

void Timeline::showText(QString text)
{
    d->text = text;
    d->textVisible = true;
    update();
}

void Timeline::hideText()
{
    d->textVisible = false;
    update();
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

void Timeline::changeDate(QDate newDate)
{
    if (newDate == d->date || !newDate.isValid())
        return;
    d->date = newDate;
    d->startValue = Internal::localTime(newDate, d->startValue.time());
    d->endValue = Internal::localTime(newDate, d->endValue.time());
    // The clock of the new day can skip the times of the old.
    d->clampWindow();
    updateCameras();
    d->dirty = true;
    update();
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
    d->dirty = true;
    emit recordsUpdated();
    update();
}

void Timeline::timerEvent(QTimerEvent *)
{
    updateCameras();
}

void Timeline::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawStyleBackground(painter, *this);
    painter.setRenderHint(QPainter::Antialiasing);

    Internal::TimelinePainter content(*d);
    if (d->dirty) {
        content.renderRecords();
        d->dirty = false;
        emit exportEnabled(canExport());
    }
    content.paint(painter);
}

void Timeline::resizeEvent(QResizeEvent *)
{
    d->recordsImage = QImage(size(), QImage::Format_ARGB32);
    d->recordsImage.fill(Qt::transparent);
    d->dirty = true;
    update();
}

} // namespace GUI
} // namespace ZorvaneClient
