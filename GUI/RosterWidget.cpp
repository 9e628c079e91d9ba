// SPDX-License-Identifier: MIT
#include "GUI/RosterWidget.h"

#include <QEvent>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "API/Camera.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/RosterSearch.h"
#include "GUI/ServerWidget.h"
#include "GUI/SharedTexts.h"
#include "GUI/StyleSheet.h"
#include "GUI/WidgetMap.h"
#include "GUI/WidgetOrder.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr std::chrono::milliseconds pollInterval{20000};
constexpr int stretchFactor = 10;
constexpr int preparedCards = 100;
/// Round what a search has found.
constexpr int marginPixels = 8;

/// By name, the servers that are offline behind all others.
QList<QWidget *> sortedServers(const QMap<API::server_id_t, ServerWidget *> &servers)
{
    std::multimap<std::pair<bool, QString>, QWidget *> sorted;
    for (ServerWidget *widget : servers) {
        const API::ServerPtr server = widget->server();
        const bool isOffline = server->flags() == API::ServerOffline;
        sorted.emplace(std::make_pair(isOffline, server->alias()), widget);
    }
    QList<QWidget *> order;
    for (const auto &entry : sorted)
        order.append(entry.second);
    return order;
}

bool allAreCameras(const QMap<API::server_id_t, ServerWidget *> &servers)
{
    return std::all_of(servers.cbegin(), servers.cend(),
                       [](ServerWidget *widget) { return widget->server()->isCamera(); });
}

} // namespace

RosterWidget::RosterWidget(QWidget *parent) : QScrollArea(parent)
{
    setObjectName(QStringLiteral("rosterWidget"));
    setAccessibleName(SharedTexts::cameras());
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setStyleSheet(styleSheetOf(QStringLiteral(":/roster/roster.qss")));

    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("rosterContent"));
    serversLayout = new QVBoxLayout(content);
    serversLayout->setSizeConstraint(QLayout::SetMinimumSize);
    serversLayout->setContentsMargins(0, 0, 0, 0);
    serversLayout->setSpacing(0);
    setWidget(content);
    startPolling();
}

void RosterWidget::startPolling()
{
    connect(&client, &API::CloudAPIClient::rosterUpdated, this, &RosterWidget::updateRoster);
    client.updateRoster();
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, &client, &API::CloudAPIClient::updateRoster);
    timer->start(pollInterval);
}

void RosterWidget::updateRoster()
{
    updateWidgets(&servers, API::CloudAPIClient::serverList(), &ServerWidget::server,
                  &ServerWidget::updateServer,
                  [this](const API::ServerPtr &server) { return createServer(server); });
    for (const API::camera_global_id_t &camera : openCameras)
        setOpen(camera, true);
    rebuildOrder();
    prepareFirstCards();
}

/// A roster of common size is ready before it is scrolled. In a large one the other cards are
/// made ready as they come into view.
void RosterWidget::prepareFirstCards()
{
    int left = preparedCards;
    for (const ServerWidget *server : qAsConst(servers)) {
        if (left <= 0)
            return;
        const QList<CameraWidget *> cards = server->cameraWidgets();
        for (CameraWidget *card : cards.mid(0, left))
            card->prepare();
        left -= static_cast<int>(cards.size());
    }
}

ServerWidget *RosterWidget::createServer(const API::ServerPtr &server)
{
    auto *widget = new ServerWidget(server, this->widget());
    connect(widget, &ServerWidget::openCamera, this, &RosterWidget::openCamera);
    connect(widget, &ServerWidget::addToLayout, this, &RosterWidget::addToLayout);
    connect(widget, &ServerWidget::openInNewWindow, this, &RosterWidget::openInNewWindow);
    connect(widget, &ServerWidget::editServer, this, &RosterWidget::editServer);
    connect(widget, QOverload<API::ServerPtr>::of(&ServerWidget::deleteServer), this,
            &RosterWidget::deleteServer);
    widget->setAddToLayoutEnabled(addToLayoutEnabled);
    return widget;
}

void RosterWidget::rebuildOrder()
{
    const bool flat = allAreCameras(servers);
    for (ServerWidget *widget : qAsConst(servers))
        widget->setFlatMode(flat);
    setWidgetOrder(serversLayout, sortedServers(servers), stretchFactor);
}

void RosterWidget::markOpen(const std::set<API::camera_global_id_t> &cameras)
{
    const auto before = std::exchange(openCameras, cameras);
    for (const API::camera_global_id_t &camera : before) {
        if (openCameras.count(camera) == 0)
            setOpen(camera, false);
    }
    for (const API::camera_global_id_t &camera : openCameras) {
        if (before.count(camera) == 0)
            setOpen(camera, true);
    }
}

void RosterWidget::setOpen(const API::camera_global_id_t &camera, bool isOpen)
{
    const ServerWidget *server = servers.value(camera.server, nullptr);
    if (CameraWidget *card = server ? server->cardOf(camera.camera) : nullptr)
        card->setOpen(isOpen);
}

void RosterWidget::setAddToLayoutEnabled(bool enabled)
{
    addToLayoutEnabled = enabled;
    for (ServerWidget *widget : qAsConst(servers))
        widget->setAddToLayoutEnabled(enabled);
}

void RosterWidget::deleteServer(API::ServerPtr server)
{
    const auto localServer = server.dynamicCast<API::LocalServer>();
    if (!localServer)
        return;
    API::CloudAPIClient().deleteLocalServer(localServer);
    updateRoster();
}

bool RosterWidget::eventFilter(QObject *object, QEvent *event)
{
    if (object == widget() && event->type() == QEvent::Paint)
        updatePreviews();
    return QScrollArea::eventFilter(object, event);
}

/// Only a card within the visible part of the list can be in view.
void RosterWidget::updatePreviews()
{
    const QRect visible = widget()->visibleRegion().boundingRect();
    for (const ServerWidget *server : qAsConst(servers)) {
        const auto within = server->cardsWithin(visible.translated(-server->pos()));
        for (CameraWidget *card : within) {
            if (card->isInView() && !card->hasPreview())
                card->updatePreview();
        }
        const auto all = server->cameraWidgets();
        for (CameraWidget *card : all) {
            if (card->hasPreview() && !card->isInView())
                card->deletePreview();
        }
    }
}

void RosterWidget::search(QString name)
{
    searchText = name;
    for (ServerWidget *server : qAsConst(servers)) {
        if (name.isEmpty()) {
            endSearch(server);
        } else {
            searchServer(server, name);
        }
    }
    // Both lists are given what is typed, also the one that another page hides.
    if (!name.isEmpty() && isVisible())
        showFirstFound(name);
}

void RosterWidget::showFirstFound(const QString &name)
{
    const QList<QWidget *> order = sortedServers(servers);
    // What the search has opened and closed takes its place at once, from the inside out.
    for (const QWidget *server : order)
        server->layout()->activate();
    serversLayout->activate();
    for (const QWidget *server : order) {
        if (QWidget *found = firstFound(static_cast<const ServerWidget *>(server), name)) {
            ensureWidgetVisible(found, 0, marginPixels);
            return;
        }
    }
}

} // namespace GUI
} // namespace ZorvaneClient
