// SPDX-License-Identifier: MIT
#pragma once

class QPainter;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Draws what the style sheet says of the background and border of `widget`, which a subclass
/// of QWidget has to do for itself.
void drawStyleBackground(QPainter &painter, const QWidget &widget);
void drawStyleBackground(QWidget &widget);

} // namespace GUI
} // namespace ZorvaneClient
