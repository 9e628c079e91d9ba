// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// What Return does on a widget with the focus: a button is pressed, a card opened, a list or a
/// menu dropped. False where it has another meaning, as in a dialog, or none.
bool pressEntry(QWidget *widget);

/// Opens the menu of the card, the tile or the server on which the focus is, with its first entry
/// marked. False if it has none.
bool openEntryMenu(QWidget *widget);

} // namespace GUI
} // namespace ZorvaneClient
