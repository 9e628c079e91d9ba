// SPDX-License-Identifier: MIT
#pragma once

#include <QSharedPointer>

#include "API/Types.h"
#include "GUI/Preview.h"

namespace ZorvaneClient {
namespace GUI {

namespace Internal {
class CameraWidgetPrivate;
}

/// The card of one camera of the roster. It learns of the camera's state by updateCamera();
/// its drag carries the format "camera".
class CameraWidget : public Preview
{
    Q_OBJECT
    Q_DISABLE_COPY(CameraWidget)

public:
    explicit CameraWidget(API::CameraPtr camera, QWidget *parent = nullptr,
                          Making making = Making::AtOnce);
    /// Makes the widgets and the menu of one that makes them later, before it is first painted.
    void prepare();

    API::CameraPtr camera() const;
    bool isInView() const;
    /// The card shows a picture or waits for one.
    bool hasPreview() const;

signals:
    void openCamera(API::CameraPtr camera);
    void addToLayout(API::CameraPtr camera);
    void openInNewWindow(API::CameraPtr camera);

public slots:
    /// Takes name and state; asks for a fresh picture if the card is in view.
    void updateCamera(API::CameraPtr camera);
    /// Asks for a picture: of an online camera, at most once in five seconds.
    void updatePreview();
    /// Frees the camera's picture in 30 seconds if the card is out of view by then.
    void deletePreview();
    void setAddToLayoutEnabled(bool enabled);

protected:
    QMimeData *createMimeData() override;

private slots:
    void updateState();
    void onCameraOpen();
    void onAddToLayout();
    void onOpenInNewWindow();
    void previewUpdated(QPixmap preview);
    void editSettings();
    void actualPreviewDelete();

private:
    void createMenu();

    QSharedPointer<Internal::CameraWidgetPrivate> d;
};

} // namespace GUI
} // namespace ZorvaneClient
