// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPixmap>
#include <QSharedPointer>
#include <QSize>
#include <QString>
#include <QVariantMap>

#include "API/ArchiveRecord.h"
#include "API/Types.h"

namespace ZorvaneClient {
namespace API {

namespace Internal {
class CameraPrivate;
}

/// One camera of the roster: identity, state, rights, orientation, last preview, stream
/// addresses, and what is known of its archive. Lives as long as one CameraPtr to it, also
/// after its server dropped it. GUI thread only.
class Camera : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Camera)

public:
    /// An empty camera, for LocalServer to fill in.
    Camera();
    /// A cloud camera from its object in the roster. `server` is only read.
    Camera(Server *server, QVariantMap json);
    /// Replies that are still out reach nothing.
    ~Camera() override;

    /// Takes name, state and rights from a newer roster; the rest stays as it was made.
    void update(Server *server, QVariantMap json);

    camera_id_t id() const;
    server_id_t serverId() const;
    camera_global_id_t globalId() const;
    QString name() const;
    QString fullName() const;
    /// A CameraKind.
    int kind() const;
    /// CameraFlag bits.
    int flags() const;
    /// CameraRight bits. A LAN camera has none and needs none.
    int rights() const;
    QString vcodec() const;
    /// As the server reports it, unchecked for a cloud camera.
    QSize videoSize() const;

    bool isPaid() const;
    bool isOnline() const;
    bool isLiveShared() const;
    bool isArchiveShared() const;
    bool isExportEnabled() const;

    /// Clockwise, in degrees; can be negative.
    int rotation() const;
    /// The service keeps a cloud camera's. A LAN camera's is written to the settings too, and
    /// begins at 0 with each object.
    void setRotation(int angle);
    bool isMirrored() const;
    /// Lasts for the life of the object.
    void setMirrored(bool mirror);

    /// The camera's trouble in words, empty if there is none.
    QString stateText() const;
    /// The same as a sentence.
    QString statusText() const;

    /// Of a LAN camera: the two sides of "host:port"; empty and 0 in any other shape.
    QString host() const;
    int port() const;

    // Nothing in a stream address is percent-encoded.

    QString liveUrl(int quality) const;
    /// `start` in seconds since the epoch; `end` is not part of the address.
    QString archiveUrl(int quality, int speed, qint64 start, qint64 end) const;
    /// Both ends in milliseconds since the epoch. Empty for a cloud camera.
    QString exportUrl(qint64 start, qint64 end) const;

    /// True when a preview is in memory.
    bool hasPreview() const;
    /// The last preview, turned and mirrored; from the cache file if memory has none.
    QPixmap preview();
    /// The same as it was received.
    QPixmap sourcePreview();
    /// Keeps a copy in the cache file; a null pixmap only frees the memory.
    void setPreview(QPixmap pixmap);

    bool hasRecords(QDate date) const;
    QList<ArchiveRecord> records(QDate date) const;
    /// Number of records by date, for the days asked for so far.
    QMap<QDate, int> calendar() const;

    bool operator==(const Camera &other) const;

    // For LocalServer.

    void setId(server_id_t server, camera_id_t id);
    void setName(QString name);
    void setKind(int kind);
    /// The LAN server's password, which stands in for the session.
    void setSessionId(QString sessionId);
    void setVideoSize(QSize size);
    void setVcodec(QString vcodec);
    void setExportEnabled(bool enabled);
    void setFlags(int flags);

signals:
    void flagsChanged();
    void rightsChanged();
    /// Null when there is no preview any more.
    void previewChanged(QPixmap newPreview);
    void recordsChanged(QDate date);
    void recordsError();
    /// The range is that of the request.
    void calendarChanged(QDate start, QDate end);
    void orientationChanged();

public slots:
    /// Ends in previewChanged(); a failure takes the shown preview away.
    void updatePreview();
    /// Ends in recordsChanged() or recordsError().
    void updateTimeline(QDate date);
    /// Ends in calendarChanged(), or in nothing if it fails.
    void updateCalendar(QDate start, QDate end);

private:
    void updateCloudPreview();
    void updateLocalPreview();
    void showOrientation();

    QSharedPointer<Internal::CameraPrivate> d;
};

} // namespace API
} // namespace ZorvaneClient
