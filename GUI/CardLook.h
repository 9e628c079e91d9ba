// SPDX-License-Identifier: MIT
#pragma once

#include <QPixmap>
#include <QString>

#include <optional>

namespace ZorvaneClient {
namespace GUI {

/// All that a card was told to show.
struct CardLook {
    /// The form's sample until there is one.
    std::optional<QString> caption;
    /// The part of the caption that a search has found.
    QString marked;
    /// A Preview::State; 0 before one is told.
    int state = 0;
    /// At its full size.
    QPixmap image;
    /// The file that stands in the place of a null image.
    QString icon;
    /// The spinner turns until there is an image.
    bool isWaiting = false;
    /// What the card stands for is open in the card's window.
    bool isOpen = false;
};

} // namespace GUI
} // namespace ZorvaneClient
