// SPDX-License-Identifier: MIT
#include "GUI/RosterSearch.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/ServerWidget.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

bool contains(const QString &text, const QString &part)
{
    return text.contains(part, Qt::CaseInsensitive);
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

} // namespace

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

QWidget *firstFound(const ServerWidget *server, const QString &name)
{
    if (contains(server->server()->alias(), name) && !server->heading()->isHidden())
        return server->heading();
    const QList<API::CameraPtr> cameras = server->server()->sortedCameras();
    for (const API::CameraPtr &camera : cameras) {
        if (contains(camera->name(), name))
            return server->cardOf(camera->id());
    }
    return nullptr;
}

void endSearch(ServerWidget *server)
{
    const QList<CameraWidget *> cards = server->cameraWidgets();
    for (CameraWidget *card : cards)
        card->highlightOff();
    server->highlightOff();
    server->restoreExpandState();
}

} // namespace GUI
} // namespace ZorvaneClient
