// SPDX-License-Identifier: MIT
#include "tools/pictures/Studio.h"

#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <iterator>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/CameraWidget.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/SideBar.h"
#include "GUI/ToolBar.h"
#include "demo/scenes/SceneCount.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tools/pictures/Require.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

bool isGood(const DemoCamera &camera)
{
    return !camera.lan && camera.online && camera.paid && camera.live && camera.archive;
}

} // namespace

Studio::Studio(const QString &albumFolder) : album(albumFolder)
{
    ZorvaneDemo::DemoService::Options options;
    options.servers = 5;
    options.cameras = 30;
    options.scenes = ZorvaneDemo::sceneCount;
    require(service.start(options), qPrintable(service.errorString()));
    useService(service);
    const QVector<DemoCamera> made = service.cameras();
    for (const DemoCamera &camera : made) {
        if (camera.lan)
            continue;
        require(service.setServerOnline(camera.server, true), "server");
        require(
            service.setCamera(camera.server, camera.camera,
                              {{QStringLiteral("rotation"), 0}, {QStringLiteral("mirror"), false}}),
            "upright camera");
    }
    const QString offline = service.addServer(QStringLiteral("Holiday house"), 2);
    require(service.setServer(offline, {{QStringLiteral("online"), false}}), "offline server");
    require(service.writeLocalRoster(QStringLiteral(".")), "LAN servers");
    const QVector<DemoCamera> world = service.cameras();
    std::copy_if(world.begin(), world.end(), std::back_inserter(good), isGood);
    const auto found =
        std::find_if(world.begin(), world.end(), [](const DemoCamera &each) { return each.lan; });
    require(found != world.end(), "LAN camera");
    lan = *found;
}

API::CameraPtr Studio::camera(const DemoCamera &camera)
{
    const auto shown = [&] { return card(camera.server, camera.camera); };
    waitFor([&] { return shown() != nullptr; }, "card");
    return shown()->camera();
}

DemoCamera Studio::cameraThat(const std::function<bool(const DemoCamera &)> &isMeant,
                              const char *what)
{
    const QVector<DemoCamera> world = service.cameras();
    const auto found = std::find_if(world.begin(), world.end(), isMeant);
    require(found != world.end(), what);
    return *found;
}

API::LayoutPtr Studio::layout(const QString &name, int rows, int columns, int first)
{
    require(first + rows * columns <= good.size(), "cameras");
    auto layout = API::LayoutPtr::create();
    layout->resize(rows, columns);
    for (int i = 0; i < rows * columns; ++i)
        layout->setCamera(camera(good.at(first + i)), i / columns, i % columns, 1, 1);
    layout->setName(name);
    return layout;
}

void Studio::open(const API::LayoutPtr &layout)
{
    require(mainWindow()->openLayout(layout), "layout");
    waitForPictures("pictures in every tile");
    hoverNothing();
    settle();
}

void Studio::spoil(const char *kind, const char *route, qint64 value)
{
    ZorvaneDemo::DemoFault fault;
    fault.kind = QLatin1String(kind);
    fault.route = QLatin1String(route);
    fault.value = value;
    require(service.addFault(fault) > 0, "fault");
}

void Studio::take(const char *name, const char *caption, const QRect &part)
{
    if (!part.isNull() || mainWindow()->devicePixelRatioF() <= 1)
        takeAtAnyScale(name, caption, part);
}

void Studio::takeAtAnyScale(const char *name, const char *caption, const QRect &part)
{
    settle();
    album.take(QLatin1String(name), QLatin1String(caption), mainWindow(), part);
}

void Studio::takeMenu(const char *name, const char *caption, QPushButton *button, const QRect &part)
{
    require(button, name);
    QMenu *menu = button->menu();
    require(menu, name);
    // The button comes back when its menu has been closed.
    QTimer::singleShot(0, menu, [=] {
        menu->setActiveAction(menu->actions().first());
        take(name, caption, part);
        menu->close();
    });
    button->showMenu();
    settle();
}

void waitForPictures(const char *what)
{
    waitFor(
        [] {
            const QList<GUI::Player::VideoWidget *> tiles = gridOf(mainWindow())->players();
            return std::all_of(tiles.begin(), tiles.end(),
                               [](auto *tile) { return stripOf(tile).has_value(); });
        },
        what);
}

GUI::ServerWidget *serverOf(const DemoCamera &camera)
{
    const QList<GUI::ServerWidget *> servers = serverWidgets();
    const auto found = std::find_if(servers.begin(), servers.end(), [&](GUI::ServerWidget *server) {
        return cardsOf(server).contains(card(camera.server, camera.camera));
    });
    require(found != servers.end(), "server of a camera");
    return *found;
}

void placeMainWindow()
{
    const QRect screen = mainWindow()->screen()->geometry();
    mainWindow()->move((screen.width() - mainWindow()->width()) / 2,
                       screen.height() - mainWindow()->height());
    settle();
}

QRect placeOf(const QWidget *part)
{
    return QRect(part->mapTo(mainWindow(), QPoint()), part->size());
}

QRect gridPlace()
{
    return placeOf(mainWindow()->findChild<GUI::InfoPanel *>())
        .united(placeOf(gridOf(mainWindow())));
}

QRect sidePlace()
{
    return placeOf(mainWindow()->findChild<GUI::SideBar *>())
        .united(placeOf(mainWindow()->findChild<GUI::ToolBar *>()));
}

QWidget *partNamed(const char *name)
{
    auto *part = mainWindow()->findChild<QWidget *>(QLatin1String(name));
    require(part, name);
    return part;
}

void focusByTab(const QWidget *widget)
{
    mainWindow()->activateWindow();
    waitFor([] { return mainWindow()->isActiveWindow(); }, "active window");
    constexpr int mostPresses = 200;
    for (int presses = 0; presses < mostPresses && !widget->hasFocus(); ++presses) {
        QWidget *focused = QApplication::focusWidget();
        QTest::keyClick(focused ? focused : mainWindow(), Qt::Key_Tab);
    }
    require(widget->hasFocus(), "focus by Tab");
    settle();
}

void hover(QWidget *widget)
{
    // A pointer that stands still enters nothing.
    QTest::mouseMove(widget->window(), widget->mapTo(widget->window(), QPoint(1, 1)));
    QTest::mouseMove(widget->window(), widget->mapTo(widget->window(), widget->rect().center()));
    settle();
}

void hoverNothing()
{
    auto *panel = mainWindow()->findChild<GUI::InfoPanel *>();
    QTest::mouseMove(mainWindow(), panel->mapTo(mainWindow(), panel->rect().center()));
}

} // namespace ZorvaneClient::Pictures
