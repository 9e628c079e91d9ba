// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTimer>
#include <QVariant>
#include <QVariantMap>

#include "API/Server.h"

namespace ZorvaneClient {
namespace API {

class StreamerClient;

/// A video server on the local network, reached directly. Keeps its state and its cameras up
/// to date by asking the server every five seconds, from construction to destruction.
class LocalServer : public Server
{
    Q_OBJECT
    Q_DISABLE_COPY(LocalServer)

public:
    LocalServer(QString alias, QString host, int port, QString password);
    /// From an entry of the local roster file, as toJson() writes it.
    explicit LocalServer(QVariantMap json);
    ~LocalServer() override;

    bool isLocal() const override;
    /// "host:port"
    server_id_t id() const override;

    QString host() const;
    int port() const;
    QString password() const;
    // Cameras that exist keep the address and the password they were made with.
    void setHost(QString host);
    void setPort(int port);
    void setPassword(QString password);

    QVariantMap toJson() const;
    /// The id of a server made of `json`, without making one, which would begin to poll.
    static server_id_t idOf(const QVariantMap &json);

signals:
    /// State or cameras were taken from a reply, or a request failed; not for a list without
    /// cameras, of which camerasRemoved() tells.
    void updated();

public slots:
    /// Asks at once; a request that is still out is not sent again.
    void update();

private slots:
    void infoUpdate(QVariant data);
    void infoError();
    void streamsUpdate(QVariant data);
    void streamsError();

private:
    void readdressClients();
    void updateCamera(camera_id_t number, const QVariantMap &entry);

    QString serverHost;
    int serverPort = 0;
    QString serverPassword;
    bool infoPending = false;
    bool streamsPending = false;
    StreamerClient *infoClient = nullptr;
    StreamerClient *streamsClient = nullptr;
    QTimer timer;
};

} // namespace API
} // namespace ZorvaneClient
