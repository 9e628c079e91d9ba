// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// One line of the child that says something other than "frame".
struct PlayerEvent {
    enum class Kind { Size, State, Position, Bad };

    Kind kind = Kind::Bad;
    int width = 0;  ///< Size: 0 if it was no number
    int height = 0; ///< Size: 0 if it was no number
    QString text;   ///< State and Position: the token; Bad: the line
};

/// What one read of the child's output says. Nothing is carried over to the next read, so a
/// line torn across two reads counts as two lines.
struct PlayerOutput {
    QVector<PlayerEvent> events; ///< in the order of their lines
    int frames = 0;

    static PlayerOutput parse(const QByteArray &read);
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
