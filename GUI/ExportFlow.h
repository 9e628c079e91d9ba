// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>

namespace ZorvaneClient {
namespace GUI {

namespace Player {
class VideoWidget;
}

class ArchiveControlPanel;
class ControlPanel;
class LayoutWidget;
class Timeline;

/// The way from a marked fragment to its file, and what the panels of a window show of it.
/// The fragment belongs to the strip, whichever camera is active. The export belongs to the
/// tile that writes it: it is shown until it ends or its tile goes. There is one at a time.
class ExportFlow
{
    Q_DISABLE_COPY(ExportFlow)

public:
    /// Of one window; all outlive this.
    struct Panels {
        Timeline *strip;
        ArchiveControlPanel *messages;
        ControlPanel *controls;
        LayoutWidget *grid;
    };

    explicit ExportFlow(const Panels &ofWindow) : panels(ofWindow) {}

    /// Marks a first fragment, if something is recorded on the day.
    void mark();
    /// Exports the fragment of the active camera, if that may be exported.
    void start();
    /// The player has begun to write.
    void showStarted();
    void cancel();
    /// Nothing is marked or exported any more.
    void end();

    /// The strip goes out of sight, and with it a fragment that is not being exported.
    void unmark();
    /// Tiles have been closed, perhaps the exporting one.
    void tilesClosed();
    bool isIdle() const { return state == State::None; }
    /// Shows the page of controls that there is use for: none without a camera.
    void showControls();

private:
    enum class State { None, Marking, Exporting };

    bool isWriting() const;

    Panels panels;
    State state = State::None;
    QPointer<Player::VideoWidget> tile;
};

} // namespace GUI
} // namespace ZorvaneClient
