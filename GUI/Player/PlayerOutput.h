// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QVector>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// One line of the player that says something other than "frame".
struct PlayerEvent {
    enum class Kind { Size, State, Position, Bad };

    Kind kind = Kind::Bad;
    QSize size;       ///< Size: 0 for what was no number
    int position = 0; ///< Position: milliseconds; 0 if it was no number
    QString text;     ///< State: its token; Bad: the line
};

/// What one read of the player's output says.
struct PlayerOutput {
    QVector<PlayerEvent> events; ///< in the order of their lines
    int frames = 0;

    static PlayerOutput parse(const QByteArray &read);
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
