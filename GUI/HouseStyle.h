// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

class QApplication;

namespace ZorvaneClient {
namespace GUI {

/// The family of all text; the program brings its fonts along.
constexpr char fontFamily[] = "PT Sans";

/// How everything looks that no style sheet paints: the same on every desktop. What can be
/// clicked shows it by the hand; the focus is marked by FocusRing, not by each widget.
class HouseStyle : public QProxyStyle
{
    Q_OBJECT
    Q_DISABLE_COPY(HouseStyle)

public:
    HouseStyle();

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};

/// Gives the application style, palette, the marked focus and what screen readers are told; the
/// desktop has no say in them.
void useHouseStyle(QApplication *application);

} // namespace GUI
} // namespace ZorvaneClient
