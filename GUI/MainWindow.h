// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include "API/Types.h"
#include "GUI/ExportFlow.h"
#include "GUI/GridRules.h"
#include "GUI/KeyMap.h"
#include "GUI/Playlist.h"
#include "GUI/Tour.h"

namespace ZorvaneClient {
namespace GUI {

namespace Player {
class VideoWidget;
}

class ActivityWatch;
class ArchiveControlPanel;
class ControlPanel;
class InfoPanel;
class LayoutWidget;
class SideBar;
class Timeline;
class ToolBar;

/// One top-level window: the panels round the grid, and the wiring that makes them one.
class MainWindow : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(MainWindow)

public:
    explicit MainWindow(QWidget *parent = nullptr);

    /// Tiles in the grid.
    int playerCount() const;
    /// Rows by columns of the open layout.
    int cellCount() const;
    /// From here on a window that shows that saved layout alone, on the whole screen.
    void enterKiosk(const QString &layoutName);

public slots:
    void hideRosterAndToolbar();
    void showRosterAndToolbar();
    void hideArchivePanels();
    void showArchivePanels();
    void setExportMode();
    /// Nothing calls it yet.
    void setControlMode();
    /// Writes the marked fragment of the active camera into a file.
    void exportArchive();
    void cancelExport();
    void setRosterMode();
    void setLayoutsMode();
    void setSettingsMode();
    void startLayoutEditor();
    void onCameraAdded(API::CameraPtr camera);
    void onServerAdded(API::ServerPtr server);
    void openCamera(API::CameraPtr camera);
    void addToLayout(API::CameraPtr camera);
    void closeCamera(API::CameraPtr camera);
    void activateCamera(API::CameraPtr camera);
    void openNewLayout();
    /// Asks first if the open layout has unsaved edits; false if the user wants to keep it.
    bool openLayout(API::LayoutPtr layout);
    void resizeLayout(int row, int column);
    void prepareToLive();
    void playLive();
    /// Plays all tiles from `time` on.
    void onPlayArchive(QDateTime time);
    /// The tick of archive play: starts what is due, keeps the tiles in step.
    void playArchive();
    void updatePlaylist();
    /// Cursor and clock follow the tile that is furthest behind; the argument is not used.
    void updateTimeline(qlonglong);
    void updateDate(QDate date);
    void pause();
    void unpause();
    void setSoundVolume(int volume);
    void enableSound(bool enable);
    /// Starts the archive anew at the cursor; the argument is not used.
    void setSpeed(int);
    void onFullscreen();
    /// Labels on the tiles with names and states, here and in windows that come.
    void toggleNames();
    void onExportDone(QString);
    void onExportError(QString);
    void onExportStarted();
    void onExportPercentDone(int percent);
    void setLowQuality();
    void setMidQuality();
    void setHighQuality();
    void setAutoQuality();

signals:
    void signout();
    void clone();
    void closeRequested(GUI::MainWindow *window);
    void openInNewWindow(API::CameraPtr camera);
    void openInNewWindow(API::LayoutPtr layout);
    void cameraActivated(API::CameraPtr camera);
    void volumeChanged(int volume);
    void soundEnabled(bool enabled);

protected:
    void timerEvent(QTimerEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void closeEvent(QCloseEvent *event) override;

private slots:
    void layoutModified();
    void saveLayout();
    void cancelLayout();
    void closeCurrentView();
    void onKey(GUI::KeyAction action, int number);
    /// Asks nothing about unsaved edits.
    void forceCloseView();

private:
    void arrange();
    void connectSide();
    void connectInfoPanel();
    void connectControlPanel();
    void connectStrip();
    void connectGrid();
    void startDueSpans(const QDateTime &position);
    void keepInStep(const QDateTime &position);
    void restartTile(Player::VideoWidget *tile, const QDateTime &position);
    /// Asks about unsaved edits and saves them if told so; false if the user wants to keep them
    /// as they are.
    bool settleEdits();
    /// From one tile alone to all, or out of fullscreen; false if there is nothing to leave.
    bool goBack();
    /// Plays from `time` on as a click on the strip would, on another day too.
    void seek(const QDateTime &time);
    /// Opens the saved layout so many places on in the list.
    void stepLayout(int step);
    /// Makes the tile there active.
    void moveToTile(Direction direction);
    void startSearch();

    // MainWindowTour.cpp
    void setUpTour();
    void toggleTour();
    /// 0 ends it.
    void setTour(int seconds);
    void goOnTour();
    /// True while another layout would take away more than a live picture.
    bool mustStay() const;

    bool hasEdits() const;
    void addCamerasToCalendar();
    /// The window's title: what is open, and the program.
    void showTitle(const QString &name);
    /// Marks the cards of the cameras and of the layout that are open in this window.
    void markWhatIsOpen();
    bool layoutListHolds(const API::LayoutPtr &layout) const;
    /// Cameras of the open layout, in the order of its cells.
    QList<API::CameraPtr> layoutCameras() const;
    /// The first of them, or null.
    API::CameraPtr firstCamera() const;

    ToolBar *toolBar;
    SideBar *sideBar;
    ControlPanel *controlPanel;
    InfoPanel *infoPanel;
    ArchiveControlPanel *archiveControlPanel;
    Timeline *timeline;
    LayoutWidget *layoutWidget;
    Playlist playlist;
    ExportFlow exportFlow;
    Tour tour;
    QTimer tourTimer{this};
    QPointer<ActivityWatch> tourActivity;
    bool rosterWasVisible = true;
    bool wasMaximized = false;
    bool archiveMode = false;
    bool isOpening = false; ///< a layout, whose tiles get their own quality
    bool newLayoutUntouched = false;
};

} // namespace GUI
} // namespace ZorvaneClient
