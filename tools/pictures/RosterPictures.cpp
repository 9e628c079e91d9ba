// SPDX-License-Identifier: MIT
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "GUI/CameraWidget.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

QLineEdit *searchField()
{
    return qobject_cast<QLineEdit *>(partNamed("searchEdit"));
}

} // namespace

void takeRoster(Studio &studio)
{
    studio.camera(studio.lan);
    auto *roster = mainWindow()->findChild<GUI::RosterWidget *>();
    const auto hasPreviews = [] {
        const QList<GUI::CameraWidget *> cards = mainWindow()->findChildren<GUI::CameraWidget *>();
        return std::all_of(cards.begin(), cards.end(), [](GUI::CameraWidget *each) {
            return !each->isInView() || !each->camera()->isOnline() ||
                   !each->camera()->sourcePreview().isNull();
        });
    };
    waitFor(hasPreviews, "previews");
    hoverNothing();
    studio.take("roster", "The roster", sidePlace());
    roster->ensureWidgetVisible(serverWidgets().last());
    waitFor(hasPreviews, "previews");
    studio.take("roster-offline", "The end of the roster: servers that are offline", sidePlace());

    roster->ensureVisible(0, 0);
    searchField()->setText(QStringLiteral("ga"));
    studio.take("roster-search", "A search in the roster", sidePlace());
    searchField()->clear();
    settle();

    reveal(card(studio.good.first().server, studio.good.first().camera));
    auto *menuButton = card(studio.good.first().server, studio.good.first().camera)
                           ->findChild<QPushButton *>(QStringLiteral("previewMenu"));
    studio.takeMenu("card-menu", "The menu of a camera's card", menuButton, sidePlace());
    auto *chosen = card(studio.good.first().server, studio.good.first().camera);
    focusByTab(chosen);
    studio.take("roster-keyboard", "Tab has come to a card", sidePlace());
    GUI::ServerWidget *server = serverOf(studio.lan);
    roster->ensureWidgetVisible(server);
    settle();
    studio.takeMenu("server-menu", "The menu of a LAN server",
                    server->findChild<QPushButton *>(QStringLiteral("settingsButton")),
                    sidePlace());
    roster->ensureVisible(0, 0);
}

void takeLayouts(Studio &studio)
{
    API::CloudAPIClient client;
    client.addLayout(studio.layout(QStringLiteral("Ворота и двор"), 2, 2, 3));
    client.addLayout(studio.layout(QStringLiteral("Night shift"), 3, 3, 1));
    const API::LayoutPtr wide = studio.layout(QStringLiteral("Entrances"), 1, 2, 6);
    client.addLayout(wide);
    // What is nowhere but in memory goes when the service answers.
    client.saveLayoutsToFile();
    client.saveLayoutsToAPI();
    // A card shows the previews that are there.
    for (int i = 1; i < 10; ++i)
        require(getsPreview(card(studio.good.at(i).server, studio.good.at(i).camera)), "preview");
    mainWindow()->findChild<GUI::RosterWidget *>()->ensureVisible(0, 0);
    pressTab("layoutsButton");
    mainWindow()->findChild<GUI::LayoutListWidget *>()->updateLayouts();
    settle();
    studio.take("layouts", "The saved layouts", sidePlace());
    auto *shown = layoutCard(mainWindow(), QStringLiteral("Entrances"));
    studio.takeMenu("layout-menu", "The menu of a layout's card",
                    shown->findChild<QPushButton *>(QStringLiteral("previewMenu")), sidePlace());
    searchField()->setText(QStringLiteral("en"));
    studio.take("layouts-search", "A search in the layouts", sidePlace());
    searchField()->clear();
    studio.open(wide);
    studio.take("layout-open", "The open layout is marked", sidePlace());
    auto *panel = mainWindow()->findChild<GUI::InfoPanel *>();
    studio.takeMenu("view-menu", "The menu of the open view",
                    panel->findChild<QPushButton *>(QStringLiteral("settingsButton")),
                    gridPlace().adjusted(0, 0, 0, -gridPlace().height() / 2));
    pressTab("rosterButton");
}

} // namespace ZorvaneClient::Pictures
