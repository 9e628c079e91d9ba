// SPDX-License-Identifier: MIT
#include "GUI/ServerWidget.h"

#include <QAction>
#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QVBoxLayout>

#include "API/Camera.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/DragFormats.h"
#include "GUI/IconButton.h"
#include "GUI/IconPixmap.h"
#include "GUI/SharedTexts.h"
#include "GUI/WidgetMap.h"
#include "GUI/WidgetOrder.h"
#include "ui_ServerWidget.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int cardSpacingPixels = 8;
constexpr int cardsMarginPixels = 5;
const QString offlineIcon = QStringLiteral(":/roster/icons/rosterOfflineserver.png");

} // namespace

ServerWidget::ServerWidget(API::ServerPtr server, QWidget *parent)
    : QWidget(parent), ui(new Ui::ServerWidget), shownServer(server)
{
    ui->setupUi(this);
    ui->serverOfflineImage->setPixmap(iconPixmap(offlineIcon));
    connect(server.data(), &API::Server::aliasChanged, this, &ServerWidget::updateServerName);

    cardsLayout = new QVBoxLayout(ui->container);
    cardsLayout->setContentsMargins(0, cardsMarginPixels, 0, cardsMarginPixels);
    cardsLayout->setSpacing(cardSpacingPixels);
    noCamerasLabel = new QLabel(tr("No cameras attached"), ui->container);
    noCamerasLabel->setObjectName(QStringLiteral("noCamerasLabel"));
    noCamerasLabel->setAlignment(Qt::AlignHCenter);
    noCamerasLabel->hide();

    connect(ui->expandButton, &QCheckBox::stateChanged, ui->container,
            [this](int state) { ui->container->setVisible(state == Qt::Checked); });
    ui->controlBar->installEventFilter(this);
    ui->controlBar->setCursor(Qt::PointingHandCursor);
    if (!server->isLocal())
        ui->settingsButton->hide();
    createMenu();
    updateServer(server);
    ui->expandButton->setChecked(true);
}

ServerWidget::~ServerWidget() = default;

void ServerWidget::createMenu()
{
    auto *menu = new QMenu(this);
    // Queued: this entry can leave the roster while the dialog is open, and the menu with it.
    const QAction *editAction = menu->addAction(tr("Edit"));
    connect(editAction, &QAction::triggered, this, &ServerWidget::edit, Qt::QueuedConnection);
    menu->addAction(tr("Delete"), this, QOverload<>::of(&ServerWidget::deleteServer));
    ui->settingsButton->setMenu(menu);
    nameIconButton(ui->settingsButton, SharedTexts::options());
}

API::ServerPtr ServerWidget::server() const
{
    return shownServer;
}

QList<CameraWidget *> ServerWidget::cameraWidgets() const
{
    return cards.values();
}

CameraWidget *ServerWidget::cardOf(API::camera_id_t camera) const
{
    return cards.value(camera, nullptr);
}

QWidget *ServerWidget::heading() const
{
    return ui->controlBar;
}

QList<CameraWidget *> ServerWidget::cardsWithin(const QRect &area) const
{
    QList<CameraWidget *> found;
    if (ui->container->isHidden())
        return found;
    const QRect areaOfCards = area.translated(-ui->container->pos());
    for (CameraWidget *card : cards) {
        if (card->geometry().intersects(areaOfCards))
            found.append(card);
    }
    return found;
}

void ServerWidget::updateServer(API::ServerPtr server)
{
    updateServerName(server->alias());
    shownServer->setFlags(server->flags());
    updateWidgets(&cards, server->cameras(), &CameraWidget::camera, &CameraWidget::updateCamera,
                  [this](const API::CameraPtr &camera) { return createCard(camera); });
    arrangeCards(server->sortedCameras());
    updateState();
}

CameraWidget *ServerWidget::createCard(const API::CameraPtr &camera)
{
    auto *card = new CameraWidget(camera, ui->container, CameraWidget::Making::Later);
    connect(card, &CameraWidget::openCamera, this, &ServerWidget::openCamera);
    connect(card, &CameraWidget::addToLayout, this, &ServerWidget::addToLayout);
    connect(card, &CameraWidget::openInNewWindow, this, &ServerWidget::openInNewWindow);
    card->setAddToLayoutEnabled(addToLayoutEnabled);
    return card;
}

void ServerWidget::arrangeCards(const QList<API::CameraPtr> &sorted)
{
    QList<QWidget *> order;
    for (const API::CameraPtr &camera : sorted) {
        if (CameraWidget *card = cards.value(camera->id(), nullptr))
            order.append(card);
    }
    if (sorted.isEmpty())
        order.append(noCamerasLabel);
    noCamerasLabel->setVisible(sorted.isEmpty());
    setWidgetOrder(cardsLayout, order);
}

void ServerWidget::updateState()
{
    ui->serverOfflineImage->setVisible(shownServer->flags() == API::ServerOffline);
}

void ServerWidget::expand()
{
    ui->expandButton->setChecked(true);
}

void ServerWidget::collapse()
{
    ui->expandButton->setChecked(false);
}

void ServerWidget::setFlatMode(bool enabled)
{
    ui->controlBar->setVisible(!enabled);
    ui->line->setVisible(!enabled);
    draggable = !enabled;
    if (enabled)
        expand();
}

void ServerWidget::saveExpandState()
{
    if (expandSaved)
        return;
    savedExpanded = ui->expandButton->isChecked();
    expandSaved = true;
}

void ServerWidget::restoreExpandState()
{
    if (!expandSaved)
        return;
    ui->expandButton->setChecked(savedExpanded);
    expandSaved = false;
}

void ServerWidget::highlight(QString text)
{
    ui->serverName->highlight(text);
}

void ServerWidget::highlightOff()
{
    highlight(QString());
}

void ServerWidget::updateServerName(QString name)
{
    ui->serverName->setText(name);
    nameIconButton(ui->expandButton, name);
}

void ServerWidget::edit()
{
    emit editServer(shownServer);
}

void ServerWidget::deleteServer()
{
    emit deleteServer(shownServer);
}

void ServerWidget::setAddToLayoutEnabled(bool enabled)
{
    addToLayoutEnabled = enabled;
    for (CameraWidget *card : qAsConst(cards))
        card->setAddToLayoutEnabled(enabled);
}

bool ServerWidget::eventFilter(QObject *object, QEvent *event)
{
    if (object != ui->controlBar)
        return QWidget::eventFilter(object, event);
    if (event->type() == QEvent::MouseButtonRelease)
        ui->expandButton->toggle();
    return false;
}

void ServerWidget::paintEvent(QPaintEvent *event)
{
    // In a large roster most cards are never seen.
    for (CameraWidget *card : cardsWithin(event->rect()))
        card->prepare();
    QWidget::paintEvent(event);
}

void ServerWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        pressPosition = event->pos();
}

void ServerWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!draggable || !startsDrag(*event, pressPosition))
        return;
    pressPosition = notPressed;
    dragCard(this, serverDrag(shownServer->id()), Qt::MoveAction);
}

} // namespace GUI
} // namespace ZorvaneClient
