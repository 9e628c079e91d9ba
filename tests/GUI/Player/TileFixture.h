// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Types.h"

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace ZorvaneClient {

namespace GUI {
namespace Player {
class VideoWidget;
}
} // namespace GUI

} // namespace ZorvaneClient

namespace ZorvaneClient::Tests {

/// A LAN camera that is online.
API::CameraPtr localCamera(const QString &name = "Door"_s);
/// A camera of the cloud: online, paid for, with all rights, but for what `changes` says of
/// its place in the roster.
API::CameraPtr cloudCamera(const QVariantMap &changes = QVariantMap());

/// What the tile writes into the log when it is clicked.
QString dumpOf(GUI::Player::VideoWidget &tile);
/// The word for the tile's state.
QString stateOf(GUI::Player::VideoWidget &tile);
/// "640x480", whatever was announced last.
QString resolutionOf(GUI::Player::VideoWidget &tile);

/// The tile's two seconds are over.
void tick(GUI::Player::VideoWidget &tile);

/// True if the tile shows `text` and no picture.
bool showsText(GUI::Player::VideoWidget &tile, const QString &text);
/// Colour of one pixel as painted.
QColor pixelOf(QWidget &widget, int x, int y);

/// The wall clock under a test's control, while it lives.
class FakeClock
{
    Q_DISABLE_COPY(FakeClock)

public:
    explicit FakeClock(const QDateTime &start);
    ~FakeClock();

    QDateTime now() const;
    void advance(int seconds);

private:
    QDateTime time;
};

} // namespace ZorvaneClient::Tests
