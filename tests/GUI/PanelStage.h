// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// The panels of the main window, a card, a tile, an empty cell and a hint in one window. They
/// find no service.
class PanelStage
{
public:
    PanelStage();

    /// The widget `name` below the one called `parent`, or that one itself if `name` is empty;
    /// shown, with the stacked pages that it lies in.
    QWidget *reveal(const QString &parent, const QString &name);
    /// What the window shows in `area` of the widget, `scale` times enlarged.
    QImage pictureOf(const QWidget *widget, const QRect &area, qreal scale);

    QWidget window;
    bool isExposed = false;

private:
    void place(QWidget *widget, const QRect &area);
};

/// Has the sign-in and the roster ask a port that answers nobody.
void leaveWithoutService();

} // namespace ZorvaneClient::Tests
