// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// True for buttons, cards, tiles, and labels with a hand.
bool canBePressed(const QWidget *widget);

/// What Return does on a widget with the focus: a button or label is pressed, a card opened,
/// a list dropped, a tile made active. False where the key has another meaning too.
bool pressEntry(QWidget *widget);

/// Opens the menu of the card, the tile or the server on which the focus is, with its first entry
/// marked. False if it has none.
bool openEntryMenu(QWidget *widget);

} // namespace GUI
} // namespace ZorvaneClient
