// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Types.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/support/FakeTime.h"
#include "tests/support/ScriptedChild.h"

namespace ZorvaneClient::Tests {

/// A LAN camera that is online.
API::CameraPtr localCamera(const QString &name = "Door"_s);
/// A camera of the cloud: online, paid for, with all rights, but for what `changes` says of
/// its place in the roster.
API::CameraPtr cloudCamera(const QVariantMap &changes = QVariantMap());

/// A tile in a window of its own, with the child that it starts.
struct ScriptedTile : ScriptedChild, GUI::Player::VideoWidget {
    /// The lines of `script` are parted by bars.
    explicit ScriptedTile(const QString &script = QString(),
                          const API::CameraPtr &camera = localCamera());

    void setScript(const QString &script)
    {
        ScriptedChild::setScript(script.split(QLatin1Char('|')));
    }
    /// Lines of standard input of all children so far, but for the pings.
    QStringList orders() const;
    QProcess &process() const { return *findChild<QProcess *>(); }
    /// Starts live play and waits for the first frame.
    bool playsLive();
};

/// Qt 6 tells a window that comes up under the pointer, also on a display without a mouse.
void takePointerAway();
/// What the tile writes into the log when it is clicked.
QString dumpOf(GUI::Player::VideoWidget &tile);
/// The word for the tile's state.
QString stateOf(GUI::Player::VideoWidget &tile);
/// What the child said of its state last.
QString vlcStateOf(GUI::Player::VideoWidget &tile);

/// The tile's two seconds are over.
void tick(GUI::Player::VideoWidget &tile);

/// What is to be seen of a window now, without another paint of it.
QImage onScreen(const QWidget &window);
/// Waits until the tile shows `text` and no picture.
bool showsText(GUI::Player::VideoWidget &tile, const QString &text);

} // namespace ZorvaneClient::Tests
