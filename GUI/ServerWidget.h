// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMap>
#include <QPoint>
#include <QScopedPointer>
#include <QString>
#include <QWidget>

#include "API/Types.h"
#include "GUI/TiltedDrag.h"

class QLabel;
class QVBoxLayout;

namespace Ui {
class ServerWidget;
}

namespace ZorvaneClient {
namespace GUI {

class CameraWidget;

/// One entry of the roster: a heading with the server's name, and the cards of its cameras,
/// which the heading opens and closes. Its drag carries the format "server".
class ServerWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ServerWidget)

public:
    explicit ServerWidget(API::ServerPtr server, QWidget *parent = nullptr);
    ~ServerWidget() override;

    API::ServerPtr server() const;
    /// Hidden where the server is a camera itself.
    QWidget *heading() const;
    /// By camera number.
    QList<CameraWidget *> cameraWidgets() const;
    /// Of the camera with that number; null if there is none.
    CameraWidget *cardOf(API::camera_id_t camera) const;
    /// Those that `area`, in this widget's coordinates, touches; none of a closed entry.
    QList<CameraWidget *> cardsWithin(const QRect &area) const;

signals:
    void openCamera(API::CameraPtr camera);
    void addToLayout(API::CameraPtr camera);
    void openInNewWindow(API::CameraPtr camera);
    void editServer(API::ServerPtr server);
    void deleteServer(API::ServerPtr server);

public slots:
    void expand();
    void collapse();
    /// Without heading and line, always open, and not to be dragged.
    void setFlatMode(bool enabled);
    /// Counts once until restoreExpandState().
    void saveExpandState();
    void restoreExpandState();
    void highlight(QString text);
    void highlightOff();
    void updateState();
    /// Takes name, flags and cameras of `server`.
    void updateServer(API::ServerPtr server);
    /// For the cards that are here and for those that come later.
    void setAddToLayoutEnabled(bool enabled);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private slots:
    void edit();
    void deleteServer();
    void updateServerName(QString name);

private:
    void createMenu();
    void arrangeCards(const QList<API::CameraPtr> &sorted);
    CameraWidget *createCard(const API::CameraPtr &camera);

    QScopedPointer<Ui::ServerWidget> ui;
    API::ServerPtr shownServer;
    QMap<API::camera_id_t, CameraWidget *> cards;
    QVBoxLayout *cardsLayout = nullptr;
    QLabel *noCamerasLabel = nullptr;
    bool savedExpanded = false;
    bool expandSaved = false;
    QPoint pressPosition = notPressed;
    bool draggable = true;
    bool addToLayoutEnabled = true;
};

} // namespace GUI
} // namespace ZorvaneClient
