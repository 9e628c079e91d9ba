// SPDX-License-Identifier: MIT
#include "GUI/CameraWidget.h"

#include <QAction>
#include <QDebug>
#include <QMenu>
#include <QTimer>

#include <chrono>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/DragFormats.h"

namespace ZorvaneClient {
namespace GUI {

namespace Internal {

class CameraWidgetPrivate
{
public:
    API::CameraPtr camera;
    bool hasPreview = false;
    bool deletePending = false;
    QAction *addToLayoutAction = nullptr;
    QDateTime lastPreviewRequest;
};

} // namespace Internal

namespace {

// The first request is not held back.
constexpr int firstRequestLeadSeconds = 10;
constexpr int requestPauseSeconds = 4;
constexpr std::chrono::milliseconds releaseDelay{30000};

} // namespace

CameraWidget::CameraWidget(API::CameraPtr camera, QWidget *parent, Making making)
    : Preview(KindCamera, parent, Making::Later)
    , d(QSharedPointer<Internal::CameraWidgetPrivate>::create())
{
    d->camera = camera;
    d->lastPreviewRequest = App::Environment::now().addSecs(-firstRequestLeadSeconds);
    d->addToLayoutAction = new QAction(tr("Add to layout"), this);
    connect(d->addToLayoutAction, &QAction::triggered, this, &CameraWidget::onAddToLayout);
    connect(camera.data(), &API::Camera::previewChanged, this, &CameraWidget::previewUpdated);
    connect(this, &Preview::clicked, this, &CameraWidget::onCameraOpen);
    setText(camera->name());
    setState(camera->isOnline() ? StateOn : StateOff);
    if (camera->hasPreview())
        previewUpdated(camera->preview());
    if (making == Making::AtOnce)
        prepare();
}

void CameraWidget::prepare()
{
    if (!hasForm())
        createMenu();
}

void CameraWidget::createMenu()
{
    auto *menu = new QMenu(this);
    menu->addAction(tr("Open camera"), this, &CameraWidget::onCameraOpen);
    menu->addAction(d->addToLayoutAction);
    // Queued: the card can leave the roster while the dialog is open, and the menu with it.
    const QAction *settingsAction = menu->addAction(tr("Settings"));
    connect(settingsAction, &QAction::triggered, this, &CameraWidget::editSettings,
            Qt::QueuedConnection);
    menu->addAction(tr("Open in a new window"), this, &CameraWidget::onOpenInNewWindow);
    setMenu(menu);
}

API::CameraPtr CameraWidget::camera() const
{
    return d->camera;
}

bool CameraWidget::isInView() const
{
    return !visibleRegion().isEmpty();
}

bool CameraWidget::hasPreview() const
{
    return d->hasPreview;
}

void CameraWidget::updateCamera(API::CameraPtr)
{
    // An offline camera's caption holds its state too, which updateState() adds.
    if (d->camera->isOnline())
        setText(d->camera->name());
    updateState();
}

void CameraWidget::updateState()
{
    if (d->camera->isOnline()) {
        setState(StateOn);
        if (isInView())
            updatePreview();
    } else {
        setState(StateOff);
        setText(d->camera->name() + QStringLiteral(" (") + d->camera->stateText() +
                QLatin1Char(')'));
    }
}

void CameraWidget::updatePreview()
{
    if (!d->camera->isOnline())
        return;
    const QDateTime now = App::Environment::now();
    // The wall clock can be set back.
    if (qAbs(d->lastPreviewRequest.secsTo(now)) <= requestPauseSeconds)
        return;
    d->lastPreviewRequest = now;
    d->hasPreview = true;
    startAnimation();
    d->camera->updatePreview();
}

void CameraWidget::previewUpdated(QPixmap preview)
{
    d->hasPreview = !preview.isNull();
    setImage(preview);
}

void CameraWidget::deletePreview()
{
    if (d->deletePending)
        return;
    d->deletePending = true;
    QTimer::singleShot(releaseDelay, this, &CameraWidget::actualPreviewDelete);
}

void CameraWidget::actualPreviewDelete()
{
    if (!d->deletePending)
        return;
    d->deletePending = false;
    if (!isInView() && d->hasPreview)
        d->camera->setPreview(QPixmap());
}

void CameraWidget::onCameraOpen()
{
    qDebug() << "Opening camera";
    emit openCamera(d->camera);
}

void CameraWidget::onAddToLayout()
{
    qDebug() << "Add camera to layout";
    emit addToLayout(d->camera);
}

void CameraWidget::onOpenInNewWindow()
{
    qDebug() << "Open camera in new window";
    emit openInNewWindow(d->camera);
}

void CameraWidget::editSettings()
{
    CameraSettingsDialog::editCamera(d->camera);
}

void CameraWidget::setAddToLayoutEnabled(bool enabled)
{
    d->addToLayoutAction->setEnabled(enabled);
}

QMimeData *CameraWidget::createMimeData()
{
    return cameraDrag(d->camera->globalId());
}

} // namespace GUI
} // namespace ZorvaneClient
