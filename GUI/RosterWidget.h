// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QScrollArea>
#include <QString>

#include <set>

#include "API/CloudAPIClient.h"
#include "API/Types.h"

class QVBoxLayout;

namespace ZorvaneClient {
namespace GUI {

class ServerWidget;

/// The page of the side bar that lists the servers with the cards of their cameras. Asks the
/// service for the roster as long as it exists; only cards in view ask for previews.
class RosterWidget : public QScrollArea
{
    Q_OBJECT
    Q_DISABLE_COPY(RosterWidget)

public:
    explicit RosterWidget(QWidget *parent = nullptr);

    /// Marks the cards of these cameras and no others, those that come later too.
    void markOpen(const std::set<API::camera_global_id_t> &cameras);

signals:
    void openCamera(API::CameraPtr camera);
    void addToLayout(API::CameraPtr camera);
    void openInNewWindow(API::CameraPtr camera);
    void editServer(API::ServerPtr server);

public slots:
    /// Opens the servers with a camera whose name contains `name`, closes those that match in
    /// nothing, marks what was found, and has the first of it in view while it is shown. An empty
    /// text restores what was open before.
    void search(QString name);
    /// Takes over the process-wide roster as it is now.
    void updateRoster();
    /// For the cards that are here and for those that come later.
    void setAddToLayoutEnabled(bool enabled);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private slots:
    void deleteServer(API::ServerPtr server);
    void updatePreviews();

private:
    void startPolling();
    ServerWidget *createServer(const API::ServerPtr &server);
    void rebuildOrder();
    void setOpen(const API::camera_global_id_t &camera, bool isOpen);
    void prepareFirstCards();
    void showFirstFound(const QString &name);

    QMap<API::server_id_t, ServerWidget *> servers;
    QVBoxLayout *serversLayout = nullptr;
    API::CloudAPIClient client;
    QString searchText; ///< of the last search; nothing reads it yet
    std::set<API::camera_global_id_t> openCameras;
    bool addToLayoutEnabled = true;
};

} // namespace GUI
} // namespace ZorvaneClient
