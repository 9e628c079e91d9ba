// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QObject>
#include <QPixmap>
#include <QString>
#include <QVariant>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {

/// The program's gateway to the service. Session, roster and layouts are process-wide; an
/// object of this class is a handle without data, and its signals tell of the requests made
/// through it only. A handle may die while a request is out: nobody then hears of the reply.
/// GUI thread only.
class CloudAPIClient : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(CloudAPIClient)

public:
    explicit CloudAPIClient(QObject *parent = nullptr);
    ~CloudAPIClient() override;

    // The getters take no lock: signals reach their callers while it is held.

    /// Empty when nobody is signed in.
    static QString sessionId();
    /// A copy: cloud servers and LAN servers in one map.
    static QMap<server_id_t, ServerPtr> serverList();
    static LayoutsContainer layoutList();
    /// Forgets the cloud servers.
    static void clearRoster();

signals:
    void ok();
    void error();
    void updatesFound(QString version);
    void updatesError();
    void loginSuccess();
    void loginFailed();
    void rosterUpdated();
    void rosterUpdateError();
    void layoutsUpdated();
    void layoutsUpdateError();
    /// A picture that can't be decoded comes as a null pixmap.
    void previewReceived(QPixmap preview);
    void previewError();
    void archivesReceived(QVariant archives);
    void archivesError();
    void archiveDatesReceived(QVariant dates);
    void archiveDatesError();

public slots:
    void tryLogin(QString email, QString password);
    /// Does not wait for the service.
    void logout();
    void checkForUpdates();

    /// Ends in rosterUpdated() or rosterUpdateError(); at once if the roster is younger than
    /// 30 seconds.
    void updateRoster();
    /// Ends in layoutsUpdated() or layoutsUpdateError(); does nothing without cloud servers.
    /// layoutsUpdated() may come with the lock of the shared data held: connect no slot to it
    /// directly that updates the roster, signs out or updates layouts.
    void updateLayouts();

    void requestPreview(server_id_t serverID, camera_id_t cameraID);
    // Times are seconds since the epoch. With `apiHost` the request goes to that LAN server,
    // and `password` stands in for the session.
    void getTimeline(camera_global_id_t cameraID, uint startTime, uint endTime,
                     QString apiHost = QString(), int apiPort = 0, QString password = QString());
    void getCalendar(camera_global_id_t cameraID, uint startTime, uint endTime,
                     QString apiHost = QString(), int apiPort = 0, QString password = QString());

    // Each of the three changes the roster, emits rosterUpdated() and saves.
    void addLocalServer(LocalServerPtr server);
    void deleteLocalServer(LocalServerPtr server);
    void editLocalServer(LocalServerPtr server, QString alias, QString host, int port,
                         QString password);
    /// Writes the LAN servers to `local_roster.txt` in the working directory.
    void saveLocalRoster();
    /// Adds what the file has and memory has not; without a file there are no LAN servers.
    /// Those beyond 256 are not connected; the next save keeps them.
    void loadLocalRoster();

    // These two don't save.
    void addLayout(LayoutPtr layout);
    void deleteLayout(LayoutPtr layout);
    void saveLayoutsToAPI();
    /// Stamps the layouts with the present time and writes the account's cache file.
    void saveLayoutsToFile();

    /// Ends in ok() or error().
    void setCameraRotation(camera_global_id_t cameraId, int angle);

private slots:
    bool parseLayouts(QVariant layoutsResponse);
    void onNewRosterReceived(QVariant roster);

private:
    void requestRoster();
    void readLayoutsCache();
    void onLayoutsReceived(const QVariant &response);
};

} // namespace API
} // namespace ZorvaneClient
