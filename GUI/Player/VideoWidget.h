// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QString>
#include <QWidget>

#include "API/Types.h"
#include "App/QtShims.h"

namespace Ui {
class VideoWidget;
}

namespace ZorvaneClient {
namespace GUI {
namespace Player {

namespace Internal {
class VideoWidgetPrivate;
struct BorderRule;
struct PlayerEvent;
} // namespace Internal

/// One tile of the grid: plays one camera, live or from the archive, through a child process
/// of its own that decodes into a file which the tile maps and paints from.
/// The camera never changes. Starting and ending a child block until it has started or ended.
class VideoWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(VideoWidget)

public:
    explicit VideoWidget(API::CameraPtr camera, QWidget *parent = nullptr);
    /// Ends the children, an export too, and removes the frame file.
    ~VideoWidget() override;

    API::CameraPtr camera() const;
    API::LayoutPoint position() const;
    API::CellSize span() const;
    /// The time on the tile's clock.
    QDateTime playbackTime() const;
    /// Live: frames arrive. Archive: there is a child that has not failed.
    bool isPlaying() const;
    /// By pause(), or because the child says so.
    bool isPaused() const;
    /// From exportFragment() on, as long as its child runs.
    bool isExporting() const;
    int quality() const;
    bool isActive() const;
    /// What the tile does, or the text that stands in place of its picture.
    QString stateText() const;
    /// Shows `text` in place of the picture.
    void showError(const QString &text);

public slots:
    /// Starts a child on `url` in place of the one that runs. False, with a text in the tile,
    /// if the camera can't be played; false with error() if there is no frame file. A program
    /// that can't be started gives true.
    bool play(QString url);
    bool playLive();
    bool playArchive(QDateTime start, QDateTime end, int speed);
    bool playArchive(QDateTime start, QDateTime end);
    /// Plays from `start` to the end of the record that holds it.
    bool playArchive(QDateTime start, int speed);
    bool playArchive(QDateTime start);
    /// Sets the mode and nothing else.
    void setArchiveMode(bool archivePlaying);
    void stop();
    void pause();
    void unpause();
    /// Heard only while the tile is active and sound is enabled.
    void setSoundVolume(int volume);
    void enableSound(bool enable);
    void setTime(QDateTime dateTime);
    void setCameraName(QString name);
    /// While its bar is hidden, a label tells the camera's name and what the tile does.
    void setNameShown(bool isShown);
    /// Takes effect on the sound at the next volume command or start of the child.
    void setActive(bool isActive);
    void setPosition(int row, int column);
    void setSpan(int rowSpan, int columnSpan);
    /// 0 to 2, low to high; other values are ignored. A change restarts what plays.
    void setQuality(int quality);
    /// The same, but what plays goes on as it is: the next start has it.
    void takeQuality(int quality);
    /// The tile is the only one to be seen: the wheel zooms its picture without Ctrl.
    void setAlone(bool isAlone);
    /// The whole picture is seen again.
    void resetZoom();
    /// Writes what is recorded between the two moments into a file in the user's folder of
    /// films, as fast as the camera gives it, while the tile plays on. Nothing happens if that
    /// day has no record there. One export runs at a time; another one is refused.
    void exportFragment(QDateTime start, QDateTime end);
    /// Ends the export without a signal; nothing of the file stays. Blocks for a moment.
    void cancelExport();
    /// What the button in the tile's bar does.
    void saveSnapshot() { on_cameraScreenshotButton_clicked(); }

signals:
    /// The frame file could not be made.
    void error();
    /// The tile's clock moved by `msecs` with the stream's position.
    void msecsAdded(qlonglong msecs);
    void closed(Player::VideoWidget *widget);
    void clicked(API::CameraPtr camera);
    /// A double click: the tile wants to be seen alone, or among the others again.
    void maximiseRequested(Player::VideoWidget *widget);
    /// The tile is about to be dragged; what gives it another size does so now.
    void dragStarting();
    /// The drag is over, and the tile still there.
    void dragEnded();
    /// The tile at (`row`, `column`) was dropped here.
    void swapRequested(int row, int column);
    /// Another camera was dropped here.
    void openCamera(API::CameraPtr camera);
    /// A snapshot was written into the folder `path`, or at least tried.
    void snapshotSaved(QString path);
    // The file of an export is `path`.
    void exportDone(QString path);
    void exportError(QString path);
    void exportStarted();
    void exportPercentDone(int percent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void enterEvent(EnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private slots:
    void readPlayerState();
    /// Logs what the player complains about. Connected to nothing, for whoever looks for its
    /// faults.
    void readPlayerErrors();
    void readExportMessages();
    void orientationChanged();
    void onFlagsChanged();
    void on_closeButton_clicked();
    void on_actionClose_triggered();
    void on_actionSettings_triggered();
    void on_cameraScreenshotButton_clicked();

private:
    void dumpState() const;

    // VideoWidgetPlayback.cpp
    void reloadByTimer();

    // VideoWidgetPlayer.cpp
    void setUpPlayer();
    void closePlayer();
    void deliverPendingCommands();
    void sendCommand(const QString &command);
    void sendVolume();
    void applyPlayerEvent(const Internal::PlayerEvent &event);
    void applyVlcState(const QString &vlcState);
    void applyPosition(int position);
    void presentFrame();
    void boundErrorOutput();

    // VideoWidgetExport.cpp
    void setUpExport();
    /// Nothing else watches the child of an export: one that is over without its file is found
    /// at the next tick.
    void noticeEndOfExport();
    void logFailedExport();

    // VideoWidgetPicture.cpp
    void setUpBars();
    void showBars(bool visible);
    void showPicture();
    void clearImage();
    void setPictureSeen(bool isSeen);
    void showSpinner();
    void hideSpinner();
    void updateAspectRatio();
    QRect picturePlace() const;
    QString stateWord() const;
    Internal::BorderRule borderRule() const;

    // VideoWidgetZoom.cpp
    bool isZoomed() const;
    void panTo(QPoint position);
    void showZoom();

    // VideoWidgetEvents.cpp
    void setPressPosition(QPoint position);
    void dragTile();

    QScopedPointer<Ui::VideoWidget> ui;
    QSharedPointer<Internal::VideoWidgetPrivate> d;
};

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
