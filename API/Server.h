// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVariantMap>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {

namespace Internal {
class ServerPrivate;
}

/// One video server of the roster with its cameras. The object survives a refresh of the
/// roster, and so do its cameras. Signals can come while the roster's lock is held: connect
/// nothing to them directly that changes or asks for the roster. GUI thread only.
class Server : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Server)

public:
    /// An empty server, for LocalServer to fill in.
    Server();
    /// From the server's object in the roster. What is missing reads as empty, 0 or false.
    explicit Server(QVariantMap json);
    ~Server() override;

    virtual bool isLocal() const;
    virtual server_id_t id() const;

    /// The name shown to the user.
    QString alias() const;
    void setAlias(QString alias);
    /// ServerFlag bits.
    ServerFlags flags() const;
    void setFlags(ServerFlags flags);
    bool isOnline() const;
    bool isOwner() const;
    bool isLiveEnabled() const;
    void setLiveEnabled(bool enabled);
    bool isArchiveEnabled() const;
    void setArchiveEnabled(bool enabled);
    bool isSetupEnabled() const;
    void setSetupEnabled(bool enabled);
    bool isPublic() const;
    void setPublic(bool isPublic);
    bool isSpeedPlayEnabled() const;
    bool isArcSearchEnabled() const;
    /// The server is a camera that serves itself.
    bool isCamera() const;

    /// By number.
    QMap<camera_id_t, CameraPtr> cameras() const;
    bool hasCamera(camera_id_t id) const;
    /// By name, those that are only offline behind all others.
    QList<CameraPtr> sortedCameras() const;
    /// Replaces a camera of the same number.
    void addCamera(CameraPtr camera);
    void removeCamera(camera_id_t id);
    void clearCameras();

signals:
    void aliasChanged(QString alias);
    /// From setFlags() only; update() is silent about the flags.
    void flagsChanged(ServerFlags flags);
    void liveEnabledChanged(bool enabled);
    void archiveEnabledChanged(bool enabled);
    void setupEnabledChanged(bool enabled);
    void isPublicChanged(bool isPublic);
    void cameraAdded(CameraPtr camera);
    void cameraRemoved(camera_id_t id);
    void camerasRemoved();
    void invalidated();

public slots:
    /// Takes a newer roster; cameras that are known are updated in place.
    void update(QVariantMap json);
    void invalidate();

protected:
    QSharedPointer<Internal::ServerPrivate> d;

private:
    void readFunctions(const QVariantMap &info);
    void updateCameras(const QVariantMap &json);
};

} // namespace API
} // namespace ZorvaneClient
