// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>
#include <QVector>

#include <functional>

#include "API/Types.h"
#include "demo/client/DemoService.h"
#include "tools/pictures/Album.h"

class QPushButton;
class QWidget;

namespace ZorvaneClient {

namespace GUI {
class ServerWidget;
}

namespace Pictures {

using ZorvaneDemo::DemoCamera;

/// The program signed in to a demo service, and what the scenes have in common.
class Studio
{
public:
    explicit Studio(const QString &albumFolder);

    ZorvaneDemo::DemoService service;
    Album album;
    /// Cloud cameras that lack nothing.
    QVector<DemoCamera> good;
    DemoCamera lan;

    API::CameraPtr camera(const DemoCamera &camera);
    /// The first of the world that `isMeant`.
    DemoCamera cameraThat(const std::function<bool(const DemoCamera &)> &isMeant, const char *what);
    /// The good cameras from `first` on, row by row.
    API::LayoutPtr layout(const QString &name, int rows, int columns, int first = 0);
    /// Opens it and waits until every tile shows its camera.
    void open(const API::LayoutPtr &layout);

    /// From now on requests for `route` go wrong; DemoFault tells how. Until
    /// service.clearFaults().
    void spoil(const char *kind, const char *route, qint64 value = 0);

    /// The main window or a part of it. At a scale above 1 the whole window is left out, since
    /// its size would be great and its details are in the parts.
    void take(const char *name, const char *caption, const QRect &part = QRect());
    /// The whole window too.
    void takeAtAnyScale(const char *name, const char *caption, const QRect &part = QRect());
    /// Opens the button's menu, marks its first entry and takes the picture.
    void takeMenu(const char *name, const char *caption, QPushButton *button,
                  const QRect &part = QRect());
};

/// Waits until every tile shows a picture.
void waitForPictures(const char *what);
/// The roster's part with the server of that camera.
GUI::ServerWidget *serverOf(const DemoCamera &camera);
/// Puts it to the foot of the screen, where popups open upwards as in a maximised window.
void placeMainWindow();
/// Where it stands in the main window.
QRect placeOf(const QWidget *part);
/// The grid and the panel above it.
QRect gridPlace();
/// Side panel and tool bar.
QRect sidePlace();
/// The child of the main window of that name.
QWidget *partNamed(const char *name);
/// Presses Tab until the widget has the focus.
void focusByTab(const QWidget *widget);
/// Puts the pointer on the middle of the widget.
void hover(QWidget *widget);
/// Puts it where nothing takes notice.
void hoverNothing();

} // namespace Pictures
} // namespace ZorvaneClient
