// SPDX-License-Identifier: MIT
#include "GUI/Kiosk.h"

#include <QApplication>
#include <QCursor>

#include <chrono>
#include <utility>

#include "API/Layout.h"
#include "GUI/HoverSync.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds quietTime = 3s;
constexpr std::chrono::milliseconds playLookInterval = 5s;

} // namespace

Kiosk::Kiosk(const Parts &ofWindow, const QString &layout)
    : QObject(ofWindow.window)
    , parts(ofWindow)
    , layoutName(layout)
    , activity(this)
    , quiet(this)
    , look(this)
    , screenSaver(this)
{
    quiet.setSingleShot(true);
    quiet.setInterval(quietTime);
    connect(&quiet, &QTimer::timeout, this, &Kiosk::rest);
    connect(&activity, &ActivityWatch::pointerMoved, this, &Kiosk::wake);
    connect(&look, &QTimer::timeout, this,
            [this] { screenSaver.setHeld(parts.grid->isPlaying()); });
    look.start(playLookInterval);
    connect(parts.layouts, &LayoutListWidget::listed, this, &Kiosk::openLayout);
    parts.window->installEventFilter(this);
    parts.bar->hide();
    if (!parts.window->isFullScreen())
        parts.window->onFullscreen();
    openLayout();
}

Kiosk::~Kiosk()
{
    showCursor(true);
}

void Kiosk::openLayout()
{
    const QList<API::LayoutPtr> layouts = parts.layouts->layouts();
    for (const API::LayoutPtr &layout : layouts) {
        if (layout->name() != layoutName)
            continue;
        disconnect(parts.layouts, &LayoutListWidget::listed, this, &Kiosk::openLayout);
        parts.window->openLayout(layout);
        return;
    }
}

bool Kiosk::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange) {
        if (parts.window->isFullScreen())
            quiet.start();
        else
            wake();
    }
    return QObject::eventFilter(watched, event);
}

void Kiosk::wake()
{
    parts.bar->show();
    showCursor(true);
    quiet.start();
    const QWidget *under = QApplication::widgetAt(QCursor::pos());
    if (std::exchange(isHoverEnded, false) && under && under->window() == parts.window)
        enterWindow(parts.window, QCursor::pos());
}

void Kiosk::rest()
{
    if (!parts.window->isFullScreen())
        return;
    // A menu or a dialog is being used; the pointer that ends it starts the time anew.
    if (QApplication::activePopupWidget() || QApplication::activeModalWidget()) {
        quiet.start();
        return;
    }
    // A pointer that nobody sees lights nothing.
    isHoverEnded = isHoverEnded || parts.window->underMouse();
    if (parts.window->underMouse())
        leaveWindow(parts.window);
    parts.bar->setVisible(parts.records->isVisible());
    showCursor(false);
}

void Kiosk::showCursor(bool isShown)
{
    if (isShown == isCursorShown)
        return;
    isCursorShown = isShown;
    if (isShown)
        QApplication::restoreOverrideCursor();
    else
        QApplication::setOverrideCursor(Qt::BlankCursor);
}

} // namespace GUI
} // namespace ZorvaneClient
