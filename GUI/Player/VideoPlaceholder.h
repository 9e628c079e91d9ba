// SPDX-License-Identifier: MIT
#pragma once

#include <QScopedPointer>
#include <QWidget>

#include "API/Types.h"

namespace Ui {
class VideoPlaceholder;
}

namespace ZorvaneClient {
namespace GUI {
namespace Player {

/// Fills a cell of the grid that has no camera, and takes drops of cameras and tiles.
class VideoPlaceholder : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(VideoPlaceholder)

public:
    explicit VideoPlaceholder(QWidget *parent = nullptr);
    ~VideoPlaceholder() override;

    /// Always one cell: nobody tells a placeholder what it spans in the grid.
    API::CellSize span() const;

signals:
    void openCamera(API::CameraPtr camera);
    /// The tile at (`row`, `column`) was dropped here.
    void swapRequested(int row, int column);

protected:
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QScopedPointer<Ui::VideoPlaceholder> ui;
    int rowSpan = 1;
    int columnSpan = 1;
};

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
