// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QScopedPointer>

#include "API/Types.h"

namespace Ui {
class CameraSettingsDialog;
}

namespace ZorvaneClient {
namespace GUI {

/// Turns a camera's picture and shows the effect on its last preview. The camera changes only
/// when the user accepts.
class CameraSettingsDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(CameraSettingsDialog)

public:
    /// Returns when the user is done. An accepted dialog sets rotation and mirroring whether
    /// they have changed or not.
    static void editCamera(API::CameraPtr camera);
    ~CameraSettingsDialog() override;

private slots:
    void on_clockwise_clicked();
    void on_counterclockwise_clicked();
    void on_mirrorBox_toggled(bool checked);

private:
    CameraSettingsDialog(API::CameraPtr camera, QWidget *parent);
    void showPreview();

    QScopedPointer<Ui::CameraSettingsDialog> ui;
    API::CameraPtr camera;
    int rotation = 0; ///< degrees, not bounded while the dialog is open
    bool mirror = false;
};

} // namespace GUI
} // namespace ZorvaneClient
