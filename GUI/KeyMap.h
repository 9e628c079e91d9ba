// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

namespace ZorvaneClient {
namespace GUI {

/// What a key of a window does; the number behind it says which one, or how far.
enum class KeyAction {
    Pause,
    Fullscreen,
    Maximise, ///< the active tile
    Back,     ///< from the tile that is alone to all, from fullscreen to the window
    Seek,     ///< by so many milliseconds of archive
    Live,
    Records,
    Snapshot,
    Sound,
    Speed,      ///< by so many steps
    OpenLayout, ///< place in the list of saved layouts, from 0
    StepLayout, ///< by so many places of that list
    Tour,
    MoveToTile, ///< a Direction
    ResetZoom,
    Names,
    Search,
    Help,
};

struct KeyRow {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    KeyAction action;
    int number;
    /// English, of the context of KeyCard. Rows that follow each other with the same text are
    /// one line of the card; a row without one is another way to type the row above.
    const char *text;
};

/// All keys, in the order of the card.
const QVector<KeyRow> &keyMap();

/// The row of a pressed key, or null. A letter of the Russian layout counts as the one that is
/// printed on the same key, and the number pad as the keys that it repeats.
const KeyRow *keyRow(int key, Qt::KeyboardModifiers modifiers);

/// A line of the card: "Ctrl+1 … 9", and what the keys do.
struct KeyLine {
    QString keys;
    const char *text;
};

QVector<KeyLine> keyLines();

} // namespace GUI
} // namespace ZorvaneClient
