// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>
#include <QWidget>

#include "API/Types.h"

namespace ZorvaneClient {
namespace GUI {

namespace Player {
class VideoPlaceholder;
class VideoWidget;
} // namespace Player

namespace Internal {
class LayoutWidgetPrivate;
}

/// The grid that shows one layout: a tile for each camera, a placeholder in each empty cell.
/// Keeps the layout as opened apart from the layout as edited. Starts no playback by itself.
class LayoutWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(LayoutWidget)

public:
    explicit LayoutWidget(QWidget *parent = nullptr);
    ~LayoutWidget() override;

    /// The layout as shown, with the edits.
    API::LayoutPtr workingLayout() const;
    /// The layout as opened.
    API::LayoutPtr savedLayout() const;

    /// True while one tile is seen alone.
    bool isMaximised() const;
    bool areNamesShown() const;
    bool isPaused() const;
    /// True as soon as one tile plays.
    bool isPlaying() const;
    int playerCount() const;
    QList<Player::VideoWidget *> players() const;
    /// The first tile of `camera`, or null.
    Player::VideoWidget *player(const API::CameraPtr &camera) const;
    /// Clock of the playing tile that is furthest behind; now if none plays.
    QDateTime earliestPlaybackTime() const;
    void setTime(QDateTime time);

    // An export is the matter of the camera's first tile; without one nothing happens.

    void exportArchive(const API::CameraPtr &camera, const QDateTime &start, const QDateTime &end);
    void cancelExport(const API::CameraPtr &camera);

public slots:
    /// Puts `camera` in the place of the sending tile or placeholder, else in the first free
    /// cell; without a free cell nothing happens.
    void addCamera(API::CameraPtr camera);
    void addCamera(API::CameraPtr camera, API::LayoutPoint position, API::CellSize span);
    /// Closes every tile of `camera`.
    void removeCamera(API::CameraPtr camera);
    void setActiveCamera(API::CameraPtr camera);
    void setSoundVolume(int volume);
    void enableSound(bool enable);
    /// Lets the quality follow the size of the grid.
    void updateQuality();
    /// Gives every tile the same API::StreamQuality.
    void updateQuality(int quality);
    /// Makes the grid anew; false if it shows just that layout already, and then its tiles only
    /// return to live play. Who hears of a camera that is closed on the way may open another
    /// layout right there: the call that came first has the last word.
    bool openLayout(API::LayoutPtr layout);
    void resizeLayout(int rows, int columns);
    /// Shows `tile` alone over the whole grid, in the quality of a single tile, or all again if
    /// it was. The layout is not edited, and the others play on. Any edit of the grid ends it.
    void toggleMaximised(Player::VideoWidget *tile);
    /// Nothing is maximised any more.
    void showAllTiles();
    /// Every tile shows its whole picture.
    void resetZoom();
    /// Labels the tiles with their cameras' names and states.
    void setNamesShown(bool areShown);
    void playLive();
    void stop();
    void pause();
    void unpause();
    void setArchiveMode();
    void clear();
    void saveLayout(QString layoutName);
    /// For a few seconds, over the grid.
    void showHint(const QString &text);

signals:
    void cameraClosed(API::CameraPtr camera);
    void cameraAdded(API::CameraPtr camera);
    void serverAdded(API::ServerPtr server);
    void clicked(API::CameraPtr camera);
    void msecsAdded(qlonglong delta);
    void layoutModified();
    void layoutDropped(API::LayoutPtr layout);
    // What the tiles tell of their exports; the file is `path`.
    void exportDone(QString path);
    void exportError(QString path);
    void exportStarted();
    void exportPercentDone(int percent);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private slots:
    void onMsecsAdded(qlonglong delta);
    void exchangeCells(int row, int column);
    void showSnapshotHint(QString folder);
    void showExportDoneHint(QString path);
    void showExportErrorHint(QString path);
    void updateHintPositions();
    void removePlayer(Player::VideoWidget *widget);
    void beginDrag();
    void endDrag();

private:
    void makeGrid();
    void addPlaceholder(int row, int column, int rowSpan, int columnSpan);
    Player::VideoWidget *createTile(const API::CameraPtr &camera);
    // A camera comes to where it was dropped, or to the first free cell.

    void replacePlaceholder(Player::VideoPlaceholder *placeholder, const API::CameraPtr &camera);
    void replaceTile(Player::VideoWidget *tile, const API::CameraPtr &camera);
    void addToFreeCell(const API::CameraPtr &camera);
    void giveQuality(Player::VideoWidget *tile, int quality);
    void giveOwedQualities();
    void dropServer(const API::server_id_t &id);
    void dropLayout(const QString &name);

    QSharedPointer<Internal::LayoutWidgetPrivate> d;
};

} // namespace GUI
} // namespace ZorvaneClient
