// SPDX-License-Identifier: MIT
#pragma once

#include <QGridLayout>
#include <QMap>
#include <QMultiMap>
#include <QPointer>

#include "API/Types.h"

namespace ZorvaneClient {
namespace GUI {

class HintStack;

namespace Player {
class VideoPlaceholder;
class VideoWidget;
} // namespace Player

namespace Internal {

class LayoutWidgetPrivate
{
public:
    QGridLayout *grid = nullptr;
    API::LayoutPtr workingLayout;
    /// The same object as workingLayout until the first edit.
    API::LayoutPtr savedLayout;
    /// A camera may stand in several cells.
    QMultiMap<API::CameraPtr, Player::VideoWidget *> players;
    HintStack *hints = nullptr;
    bool isPaused = false;
    bool autoQuality = true;
    bool areNamesShown = false;
    /// New tiles start in the automatic quality: given later, it would start them twice.
    bool givesQuality = false;
    Player::VideoWidget *maximised = nullptr;
    int qualityBefore = 0; ///< of the tile that is maximised
    QPointer<Player::VideoWidget> dragged;
    /// What tiles take once their streams may begin anew.
    QMap<Player::VideoWidget *, int> owedQualities;

    /// Comes before each edit: the layout as opened stays as it is.
    void ensureWorkingCopy();

    // Stored spans can overlap, so that several widgets lie over one cell: a widget is found by
    // the cell in which it begins.

    /// (-1, -1) if `widget` isn't in the grid.
    API::LayoutPoint cellOf(QWidget *widget) const;
    /// The tile that begins in a cell, or null.
    Player::VideoWidget *tileAt(int row, int column) const;
    /// The placeholder that begins in a cell, or null.
    Player::VideoPlaceholder *placeholderAt(int row, int column) const;

    bool isSingleCell() const;
    void maximise(Player::VideoWidget *tile);
    /// Shows what maximise() hid. The tile that was maximised, or null.
    Player::VideoWidget *leaveMaximised();

    /// A change of quality begins a stream anew: a paused picture, or that of a drag, would go.
    bool mustKeepStreams() const { return isPaused || !dragged.isNull(); }
    /// Comes before all streams begin anew anyway, or end.
    void takeOwedQualities();
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
