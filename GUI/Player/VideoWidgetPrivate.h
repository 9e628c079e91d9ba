// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QImage>
#include <QProcess>
#include <QSharedPointer>
#include <QSize>
#include <QString>
#include <QStringList>

#include "API/StreamQuality.h"
#include "API/Types.h"
#include "GUI/Player/FrameFile.h"
#include "GUI/Player/NameTag.h"
#include "GUI/Player/PictureGeometry.h"
#include "GUI/Player/PictureZoom.h"
#include "GUI/Player/TileState.h"
#include "GUI/Player/Watchdog.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// The fields of a tile. All of its files read them; each group is written by the one that it
/// names.
class VideoWidgetPrivate
{
public:
    // VideoWidget.cpp
    API::CameraPtr camera;
    bool isActive = false;
    int row = 0;
    int column = 0;
    int rowSpan = 1;
    int columnSpan = 1;

    // VideoWidgetPlayback.cpp
    bool archivePlaying = false;
    int speed = 1; ///< of the archive; live play leaves it alone
    int quality = API::HighQuality;
    QDateTime playbackTime;
    QDateTime baseTime; ///< when the stream began: now for live, the requested start for archive
    QDateTime endTime;

    // VideoWidgetPlayer.cpp
    TileState state;
    Watchdog watchdog; ///< its reloads are counted by VideoWidgetPlayback.cpp
    QString url;       ///< of the child; nothing reads it yet
    QSharedPointer<QProcess> playerProcess;
    QStringList pendingCommands; ///< given while no child ran
    FrameFile frameFile;
    QString vlcState = QStringLiteral("unknown");
    int videoWidth = 320;
    int videoHeight = 240;
    int volume = 0;
    bool soundEnabled = true;

    // VideoWidgetExport.cpp
    QSharedPointer<QProcess> exportProcess;
    QString exportPath;        ///< target of the export that was asked for last
    bool exportIsOpen = false; ///< one was asked for, and has neither been done nor been given up

    // VideoWidgetPicture.cpp
    bool hasPicture = false;
    QImage image;      ///< over the memory of `frameFile`
    QSize refusedSize; ///< the size last logged as too large
    double aspectRatio = defaultAspectRatio;
    QString errorText; ///< stands in the middle of the tile in place of a picture
    bool isHovered = false;
    bool isNameShown = false;
    NameTag nameTag;

    // VideoWidgetZoom.cpp
    PictureZoom zoom; ///< stays while there is no picture
    bool isAlone = false;
    bool isPanning = false; ///< a held button moves the picture

    // VideoWidgetEvents.cpp
    int pressX = 0;
    int pressY = 0;
    bool isDragging = false;
    bool isDropTarget = false;

    QPoint pressPosition() const { return QPoint(pressX, pressY); }
    QSize streamSize() const { return QSize(videoWidth, videoHeight); }
    int effectiveVolume() const { return isActive && soundEnabled ? volume : 0; }
    bool childRuns() const { return playerProcess->state() == QProcess::Running; }
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
