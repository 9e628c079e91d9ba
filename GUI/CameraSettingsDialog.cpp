// SPDX-License-Identifier: MIT
#include "GUI/CameraSettingsDialog.h"

#include "API/Camera.h"
#include "API/PreviewImage.h"
#include "GUI/IconButton.h"
#include "ui_CameraSettingsDialog.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int stepDegrees = 90;
constexpr int fullTurnDegrees = 360;

} // namespace

void CameraSettingsDialog::editCamera(API::CameraPtr camera)
{
    if (!camera)
        return;
    CameraSettingsDialog dialog(camera, nullptr);
    if (dialog.exec() != QDialog::Accepted)
        return;
    camera->setRotation(dialog.rotation % fullTurnDegrees);
    camera->setMirrored(dialog.mirror);
}

CameraSettingsDialog::CameraSettingsDialog(API::CameraPtr newCamera, QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::CameraSettingsDialog)
    , camera(newCamera)
    , rotation(newCamera->rotation())
    , mirror(newCamera->isMirrored())
{
    ui->setupUi(this);
    showTextButtons(*this);
    ui->mirrorBox->setChecked(mirror);
    ui->cameraName->setText(camera->name());
    ui->cameraName->setCursorPosition(0);
    ui->soundEnabled->setEnabled(true);
    ui->mirrorBox->hide();
    ui->soundBlock->hide();
    showPreview();
}

CameraSettingsDialog::~CameraSettingsDialog() = default;

void CameraSettingsDialog::showPreview()
{
    const QPixmap source = camera->sourcePreview();
    if (source.isNull()) {
        ui->preview->clear();
        return;
    }
    const qreal ratio = devicePixelRatioF();
    QPixmap shown =
        API::orientedPreview(source, rotation, mirror)
            .scaled(ui->preview->size() * ratio, Qt::KeepAspectRatio, Qt::FastTransformation);
    shown.setDevicePixelRatio(ratio);
    ui->preview->setPixmap(shown);
}

void CameraSettingsDialog::on_clockwise_clicked()
{
    rotation += stepDegrees;
    showPreview();
}

void CameraSettingsDialog::on_counterclockwise_clicked()
{
    rotation -= stepDegrees;
    showPreview();
}

void CameraSettingsDialog::on_mirrorBox_toggled(bool checked)
{
    mirror = checked;
    showPreview();
}

} // namespace GUI
} // namespace ZorvaneClient
