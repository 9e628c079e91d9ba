// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QList>
#include <QMap>
#include <QMetaObject>
#include <QPixmap>
#include <QSize>
#include <QString>

#include "API/ArchiveRecord.h"
#include "API/Endpoint.h"
#include "API/StreamAddress.h"
#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// State of a Camera.
class CameraPrivate
{
public:
    /// True for a LAN camera, or when the service gave the right.
    bool hasRight(CameraRight right) const;

    /// The server of a LAN camera; empty when its id isn't "host:port".
    Endpoint lanEndpoint() const;
    /// Who is asked for what this camera has recorded.
    Endpoint endpoint() const;
    StreamAddress streamAddress() const;

    QPixmap oriented(const QPixmap &pixmap) const;

    /// Under this name the last preview is kept from one run to the next.
    QString previewFile() const;
    QString rotationKey() const;

    /// Keeps a connection to a request client. Those whose client is gone make room for it, or
    /// they would pile up while a camera is watched for weeks.
    void keep(const QMetaObject::Connection &connection);

    server_id_t serverId;
    camera_id_t id = 0;
    QString name;
    QString fullName; ///< server and camera; nothing asks for it
    int kind = CloudCamera;
    QString sessionId; ///< LAN cameras only: the password of the server
    QPixmap preview;
    QPixmap rawPreview;     ///< as received; shares its pixels with `preview` if nothing is turned
    bool speedPlay = false; ///< what the server can do; nothing asks for it, nor for `arcSearch`
    bool exportEnabled = false;
    bool arcSearch = false;
    QSize videoSize;
    QString vcodec;
    int flags = 0;
    QString activeService; ///< as PaidState has it; nothing asks for it
    int rotation = 0;
    bool mirror = false;
    int rights = 0;
    QMap<QDate, QList<ArchiveRecord>> records;
    QMap<QDate, int> calendar;
    QList<QMetaObject::Connection> connections; ///< to request clients, which can outlive it
};

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
