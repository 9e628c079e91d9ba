// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

#include "API/Types.h"

class QMessageBox;

namespace ZorvaneClient {
namespace GUI {

class ControlPanel;
class InfoPanel;
class LayoutWidget;
class SideBar;
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

public slots:
    void hideRosterAndToolbar();
    void showRosterAndToolbar();
    void setRosterMode();
    void setLayoutsMode();
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
    /// The clock follows the tile that is furthest behind; the argument is not used.
    void updateTimeline(qlonglong);
    void pause();
    void unpause();
    void setSoundVolume(int volume);
    void enableSound(bool enable);
    void onFullscreen();
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
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private slots:
    void layoutModified();
    void saveLayout();
    void cancelLayout();
    void closeCurrentView();
    void forceCloseView();

private:
    void connectSide();
    void connectPanels();
    void connectGrid();
    void arrange();
    bool keepsModifiedLayout();
    int askToSave();
    bool layoutListHolds(const API::LayoutPtr &layout) const;
    /// Cameras of the open layout, in the order of its cells.
    QList<API::CameraPtr> layoutCameras() const;
    /// The first of them, or null.
    API::CameraPtr firstCamera() const;

    ToolBar *toolBar;
    SideBar *sideBar;
    ControlPanel *controlPanel;
    InfoPanel *infoPanel;
    LayoutWidget *layoutWidget;
    API::CameraPtr activeCamera;
    bool rosterWasVisible = true;
    bool wasMaximized = false;
    bool archiveMode = false;
    bool newLayoutUntouched = false;
    /// The question about unsaved edits, while it is being asked.
    QPointer<QMessageBox> question;
    bool isReleasePending = false;
};

} // namespace GUI
} // namespace ZorvaneClient
