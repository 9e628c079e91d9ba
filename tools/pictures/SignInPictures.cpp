// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QtTest>

#include "App/Application.h"
#include "GUI/LoginDialog.h"
#include "GUI/TippedButton.h"
#include "tests/e2e/EndToEnd.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

template <typename T>
T *inDialog(const char *name)
{
    return part<T>(loginDialog(), name);
}

void take(Studio &studio, const char *name, const char *caption)
{
    settle();
    studio.album.take(QLatin1String(name), QLatin1String(caption), loginDialog());
}

void takeTip(Studio &studio, const char *name, const char *caption, QWidget *target)
{
    hover(target);
    take(studio, name, caption);
    QTest::mouseMove(loginDialog(), QPoint(loginDialog()->width() / 2, 100));
    settle();
}

void click(QWidget *button)
{
    QTest::mouseClick(button, Qt::LeftButton);
    settle();
}

bool showsBar(const char *page)
{
    return inDialog<QStackedWidget>("alertsBar")->currentWidget()->objectName() ==
           QLatin1String(page);
}

} // namespace

void takeSignIn(Studio &studio)
{
    qobject_cast<App::Application *>(qApp)->startLogin();
    waitFor([] { return loginDialog() != nullptr; }, "sign-in dialog");
    take(studio, "sign-in", "The sign-in dialog at the first start");
    inDialog<QLineEdit>("emailLn")->setText(studio.service.email());
    inDialog<QLineEdit>("passwordLn")->setText(QStringLiteral("a wrong one"));
    take(studio, "sign-in-filled", "The sign-in dialog, filled in");
    takeTip(studio, "sign-in-gear", "The tip of the gear", inDialog<QWidget>("settingsButton"));

    studio.spoil("stall", "/public/sessions");
    click(inDialog<QPushButton>("signInButton"));
    take(studio, "sign-in-waiting", "While the service is asked");
    studio.service.clearFaults();
    waitFor([] { return showsBar("wrongEmailPassWgt"); }, "bar for a wrong password");
    take(studio, "sign-in-wrong", "A wrong password");

    click(inDialog<QWidget>("settingsButton"));
    take(studio, "account-settings", "The account settings");
    const QList<TippedIcon *> tips =
        inDialog<QWidget>("settingsPage")->findChildren<TippedIcon *>();
    takeTip(studio, "account-settings-tip", "The tip of the default settings", tips.first());
    click(inDialog<QRadioButton>("proxyChoice"));
    inDialog<QLineEdit>("proxyHost")->setText(QStringLiteral("proxy.example.org"));
    inDialog<QLineEdit>("proxyPort")->setText(QStringLiteral("3128"));
    inDialog<QLineEdit>("proxyLogin")->setText(QStringLiteral("anna"));
    inDialog<QLineEdit>("proxyPassword")->setText(QStringLiteral("secret"));
    take(studio, "account-settings-proxy", "The account settings with a proxy");
    takeTip(studio, "account-settings-proxy-tip", "The tip of the proxy", tips.last());
    click(inDialog<QPushButton>("doneButton"));
    take(studio, "sign-in-proxy", "The bar that tells of the proxy");

    click(inDialog<QPushButton>("settingsPBtn2"));
    click(inDialog<QRadioButton>("defaultChoice"));
    click(inDialog<QPushButton>("doneButton"));
    require(enter(studio.service), "main window");
    placeMainWindow();
    studio.take("wall-empty", "The main window right after the sign-in");
}

} // namespace ZorvaneClient::Pictures
