// SPDX-License-Identifier: MIT
#include "GUI/ExportFlow.h"

#include <QDebug>

#include "API/Camera.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

void ExportFlow::mark()
{
    if (state == State::Exporting || !panels.strip->enterSelectionMode(false, false))
        return;
    state = State::Marking;
    panels.messages->showSelectFragmentMessage();
    panels.controls->setExportMode();
}

void ExportFlow::start()
{
    const API::CameraPtr camera = panels.strip->activeCamera();
    if (!camera || !camera->isExportEnabled()) {
        qDebug() << "archive export disabled";
        return;
    }
    // The button stays until the player has begun to write.
    if (isWriting())
        return;
    panels.strip->setSelectionEditable(false);
    tile = panels.grid->player(camera);
    panels.grid->exportArchive(camera, panels.strip->selectionStart(),
                               panels.strip->selectionEnd());
    // Where nothing of this camera is recorded its tile exports nothing.
    if (isWriting())
        state = State::Exporting;
}

bool ExportFlow::isWriting() const
{
    return tile && tile->isExporting();
}

void ExportFlow::showStarted()
{
    panels.controls->exportStarted();
    panels.messages->showExportingMessage();
}

void ExportFlow::cancel()
{
    if (const API::CameraPtr camera = panels.strip->activeCamera())
        panels.grid->cancelExport(camera);
    // Another camera may be active by now, or have a newer tile.
    if (tile)
        tile->cancelExport();
    end();
}

void ExportFlow::end()
{
    state = State::None;
    tile.clear();
    panels.messages->hideMessage();
    panels.strip->leaveSelectionMode();
    panels.controls->setNormalMode();
    showControls();
}

void ExportFlow::unmark()
{
    // One whose player has died shows how far it came, but holds nothing up.
    if (state == State::Marking || (state == State::Exporting && !isWriting()))
        end();
}

void ExportFlow::tilesClosed()
{
    // Nothing else tells of the end of an export whose tile has left the grid.
    if (state == State::Exporting && !panels.grid->players().contains(tile.data()))
        end();
}

void ExportFlow::showControls()
{
    if (panels.grid->playerCount() == 0)
        panels.controls->setEmptyMode(true);
    else if (state == State::None)
        panels.controls->setEmptyMode(false);
    else
        panels.controls->setExportMode();
}

} // namespace GUI
} // namespace ZorvaneClient
