// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTimer>

#include "GUI/ActivityWatch.h"
#include "GUI/ScreenSaverHold.h"

namespace ZorvaneClient {
namespace GUI {

class LayoutListWidget;
class LayoutWidget;
class MainWindow;

/// A window that hangs on a wall: the whole screen for one saved layout, which is opened as soon
/// as the list has it. The bar comes with the pointer and goes with it after a while; it stays
/// while the records are open. Off the whole screen all is as in any other window.
class Kiosk : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Kiosk)

public:
    /// Of one window, which owns this.
    struct Parts {
        MainWindow *window;
        LayoutListWidget *layouts;
        LayoutWidget *grid;
        QWidget *bar;
        QWidget *records;
    };

    Kiosk(const Parts &ofWindow, const QString &layout);
    ~Kiosk() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void openLayout();
    void wake();
    void rest();
    void showCursor(bool isShown);

    Parts parts;
    QString layoutName;
    ActivityWatch activity;
    QTimer quiet;
    QTimer look;
    ScreenSaverHold screenSaver;
    bool isCursorShown = true;
    bool isHoverEnded = false; ///< of the window, though the pointer is still over it
};

} // namespace GUI
} // namespace ZorvaneClient
