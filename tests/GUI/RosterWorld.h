// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <chrono>

#include "API/Types.h"

class QDrag;
class QLabel;
class QWidget;

namespace ZorvaneClient {
namespace Tests {

struct WorldCamera {
    int id = 1;
    QString name;
    bool online = true;
    bool paid = true;
};

struct WorldServer {
    QString id;
    QString alias;
    QList<WorldCamera> cameras;
    bool online = true;
    bool isCamera = false;
};

/// Makes `world` the cloud servers of the process-wide roster, as a reply of the service does.
void setWorld(const QList<WorldServer> &world);
API::ServerPtr worldServer(const QString &id);
API::CameraPtr worldCamera(const QString &server, int camera);

/// The wall clock stands still at `seconds` after a fixed moment.
void stopClockAt(double seconds);
void runClock();

/// Lets the running timers of that interval expire at once; returns how many there were.
int expireTimers(std::chrono::milliseconds interval);

QString labelText(const QWidget *parent, const char *name);
/// The pixmap of a label, as an image.
QImage labelPicture(const QWidget *parent, const char *name);
QImage resourcePicture(const QString &path);

/// Presses the left button at `from` and moves on to `to`, both in `widget`'s coordinates,
/// and gives the drag that started, if one did. The button stays down.
QDrag *dragFrom(QWidget *widget, const QPoint &from, const QPoint &to);

} // namespace Tests
} // namespace ZorvaneClient
