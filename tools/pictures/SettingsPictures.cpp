// SPDX-License-Identifier: MIT
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QtTest>

#include <functional>

#include "API/Camera.h"
#include "GUI/CameraWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/ServerWidget.h"
#include "GUI/SettingsWidget.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tests/support/DialogVisitor.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

constexpr char versionRoute[] = "/public/version/client_windows";

/// The menus' entries that open a dialog, by their places from the top.
constexpr int cardSettingsEntry = 2;
constexpr int serverEditEntry = 0;

DialogVisitor::Handler taker(Studio &studio, const char *name, const char *caption,
                             const std::function<void(QDialog *)> &prepare = {})
{
    return [&studio, name, caption, prepare](QDialog *dialog) {
        if (prepare)
            prepare(dialog);
        settle();
        studio.album.take(QLatin1String(name), QLatin1String(caption), dialog);
    };
}

GUI::SettingsWidget *settingsPage()
{
    return mainWindow()->findChild<GUI::SettingsWidget *>();
}

void showPage(const char *expected)
{
    pressTab("rosterButton");
    pressTab("settingsButton");
    waitFor(
        [expected] {
            return part<QStackedWidget>(settingsPage(), "updatesStack")
                       ->currentWidget()
                       ->objectName() == QLatin1String(expected);
        },
        expected);
}

} // namespace

void takeDialogs(Studio &studio)
{
    pressTab("rosterButton");
    const DemoCamera &shown = studio.good.first();
    reveal(card(shown.server, shown.camera));
    waitFor([&] { return !studio.camera(shown)->sourcePreview().isNull(); }, "preview");
    const auto triggerSettings = [&] {
        auto *button = part<QPushButton>(card(shown.server, shown.camera), "previewMenu");
        button->menu()->actions().at(cardSettingsEntry)->trigger();
    };
    {
        const DialogVisitor visitor(taker(studio, "camera-settings", "The settings of a camera"));
        triggerSettings();
        waitFor([&] { return visitor.visits() == 1; }, "camera dialog");
    }
    {
        const DialogVisitor visitor(
            taker(studio, "camera-settings-turned", "The settings of a camera, turned",
                  [](QDialog *dialog) { part<QPushButton>(dialog, "clockwise")->click(); }));
        triggerSettings();
        waitFor([&] { return visitor.visits() == 1; }, "camera dialog");
    }
    {
        const DialogVisitor visitor(taker(studio, "lan-server-add", "A LAN server is added"));
        part<QPushButton>(settingsPage(), "addServerButton")->click();
        require(visitor.visits() == 1, "dialog for a new server");
    }
    const DialogVisitor visitor(
        taker(studio, "lan-server-edit", "A LAN server is edited", [](QDialog *dialog) {
            part<QRadioButton>(dialog, "foreignHost")->click();
            part<QLineEdit>(dialog, "ipAddress")->setText(QStringLiteral("192.168.10.24"));
            part<QCheckBox>(dialog, "showPassword")->click();
        }));
    auto *button = part<QPushButton>(serverOf(studio.lan), "settingsButton");
    button->menu()->actions().at(serverEditEntry)->trigger();
    waitFor([&] { return visitor.visits() == 1; }, "dialog for a server");
}

void takeSettings(Studio &studio)
{
    studio.spoil("stall", versionRoute);
    showPage("updatesCheckPage");
    studio.take("settings-checking", "The settings while updates are looked for", sidePlace());
    studio.service.clearFaults();
    showPage("updatesNotFoundPage");
    studio.take("settings", "The settings", sidePlace());
    studio.spoil("nonjson", versionRoute);
    showPage("updatesErrorPage");
    studio.take("settings-failed", "The update service is out of reach", sidePlace());
    studio.service.clearFaults();

    {
        const DialogVisitor visitor(taker(studio, "question-update", "A newer version is offered"));
        studio.service.control("POST", QStringLiteral("/version/set"),
                               {{QStringLiteral("version"), QStringLiteral("6.1.0.7")}});
        showPage("updatesFoundPage");
        waitFor([&] { return visitor.visits() == 1; }, "offer");
        waitFor([] { return !QApplication::activeModalWidget(); }, "end of the offer");
        studio.take("settings-update", "A newer version", sidePlace());
    }
    {
        const DialogVisitor visitor(taker(studio, "question-sign-out", "Before the sign-out"));
        part<QPushButton>(settingsPage(), "signoutButton")->click();
        require(visitor.visits() == 1, "question");
    }
    auto *box = part<QComboBox>(settingsPage(), "languageBox");
    box->setCurrentIndex(1 - box->currentIndex());
    studio.take("settings-restart", "Another language needs a restart", sidePlace());
    box->showPopup();
    studio.take("settings-languages", "The languages", sidePlace());
    box->hidePopup();
    box->setCurrentIndex(1 - box->currentIndex());
}

} // namespace ZorvaneClient::Pictures
