// SPDX-License-Identifier: MIT
#include "GUI/RosterWidget.h"

#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>

#include "API/Camera.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/WidgetOrder.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr std::chrono::milliseconds pollInterval{20000};
constexpr int stretchFactor = 10;
constexpr int preparedCards = 100;

QString styleSheetOf(const QString &resource)
{
    QFile file(resource);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("Cannot read style sheet %s", qUtf8Printable(resource));
        return QString();
    }
    return QString::fromUtf8(file.readAll());
}

bool contains(const QString &text, const QString &part)
{
    return text.contains(part, Qt::CaseInsensitive);
}

/// By name, the servers that are offline behind all others.
QList<QWidget *> sortedServers(const QMap<API::server_id_t, ServerWidget *> &servers)
{
    struct Entry {
        bool offline;
        QString alias;
        ServerWidget *widget;
    };
    QList<Entry> entries;
    for (ServerWidget *widget : servers) {
        const API::ServerPtr server = widget->server();
        entries.append({server->flags() == API::ServerOffline, server->alias(), widget});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        return a.offline != b.offline ? b.offline : a.alias < b.alias;
    });
    QList<QWidget *> order;
    for (const Entry &entry : qAsConst(entries))
        order.append(entry.widget);
    return order;
}

bool allAreCameras(const QMap<API::server_id_t, ServerWidget *> &servers)
{
    return std::all_of(servers.cbegin(), servers.cend(),
                       [](ServerWidget *widget) { return widget->server()->isCamera(); });
}

void searchCards(ServerWidget *server, const QString &name)
{
    bool found = false;
    const QList<CameraWidget *> cards = server->cameraWidgets();
    for (CameraWidget *card : cards) {
        if (contains(card->camera()->name(), name)) {
            card->highlight(name);
            found = true;
        } else {
            card->highlightOff();
        }
    }
    if (found) {
        server->highlight(name);
        server->expand();
    } else {
        server->highlightOff();
        server->collapse();
    }
}

void searchServer(ServerWidget *server, const QString &name)
{
    server->saveExpandState();
    if (!contains(server->server()->alias(), name)) {
        searchCards(server, name);
        return;
    }
    server->highlight(name);
    const QList<CameraWidget *> cards = server->cameraWidgets();
    for (CameraWidget *card : cards)
        card->highlight(name);
}

void endSearch(ServerWidget *server)
{
    const QList<CameraWidget *> cards = server->cameraWidgets();
    for (CameraWidget *card : cards)
        card->highlightOff();
    server->highlightOff();
    server->restoreExpandState();
}

} // namespace

RosterWidget::RosterWidget(QWidget *parent) : QScrollArea(parent)
{
    setObjectName(QStringLiteral("rosterWidget"));
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
    const QMap<API::server_id_t, API::ServerPtr> list = API::CloudAPIClient::serverList();
    removeStaleServers(list);
    for (auto entry = list.cbegin(); entry != list.cend(); ++entry) {
        if (ServerWidget *widget = servers.value(entry.key(), nullptr)) {
            widget->updateServer(entry.value());
        } else {
            servers.insert(entry.key(), createServer(entry.value()));
        }
    }
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

/// A server that went and came back unseen is a new object under the old identifier: it gets
/// a new widget.
void RosterWidget::removeStaleServers(const QMap<API::server_id_t, API::ServerPtr> &list)
{
    for (auto entry = servers.begin(); entry != servers.end();) {
        ServerWidget *widget = entry.value();
        if (list.value(entry.key()) == widget->server()) {
            ++entry;
            continue;
        }
        serversLayout->removeWidget(widget);
        entry = servers.erase(entry);
        widget->hide();
        widget->deleteLater();
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
}

} // namespace GUI
} // namespace ZorvaneClient
