// SPDX-License-Identifier: MIT
#include "tests/GUI/PanelStage.h"

#include "tests/support/Test.h"

#include "API/LocalServer.h"
#include "App/ServiceProfile.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Preview.h"
#include "GUI/ServerWidget.h"
#include "GUI/SideBar.h"
#include "GUI/ToolBar.h"
#include "tests/support/MisbehavingServer.h"

namespace ZorvaneClient::Tests {

PanelStage::PanelStage()
{
    window.resize(1100, 700);
    place(new GUI::ToolBar, {0, 0, 60, 400});
    place(new GUI::SideBar, {60, 0, 269, 400});
    const auto server = API::LocalServerPtr::create("LAN"_s, "127.0.0.1"_s,
                                                    MisbehavingServer::deadPort(), QString());
    place(new GUI::ServerWidget(server, nullptr), {340, 0, 240, 120});
    auto *card = new GUI::Preview(GUI::Preview::KindCamera, nullptr);
    card->setState(GUI::Preview::StateOff);
    place(card, {340, 130, 233, 157});
    place(new GUI::InfoPanel, {340, 300, 700, 42});
    place(new GUI::ControlPanel, {0, 420, 1000, 50});
    place(new GUI::ArchiveControlPanel, {0, 480, 1000, 37});
    place(new GUI::Player::VideoWidget(API::CameraPtr(), nullptr), {600, 0, 200, 150});
    place(new GUI::Player::VideoPlaceholder, {820, 0, 200, 150});
    place(new GUI::PlayerNotification("text"_s, true, nullptr), {600, 160, 355, 40});
    window.show();
    isExposed = QTest::qWaitForWindowExposed(&window);
}

void PanelStage::place(QWidget *widget, const QRect &area)
{
    widget->setParent(&window);
    widget->setGeometry(area);
}

QWidget *PanelStage::reveal(const QString &parent, const QString &name)
{
    auto *found = window.findChild<QWidget *>(parent);
    if (found && !name.isEmpty())
        found = found->findChild<QWidget *>(name);
    for (QWidget *widget = found; widget && widget != &window; widget = widget->parentWidget()) {
        if (auto *stack = qobject_cast<QStackedWidget *>(widget->parentWidget()))
            stack->setCurrentWidget(widget);
        widget->show();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    return found;
}

QImage PanelStage::pictureOf(const QWidget *widget, const QRect &area, qreal scale)
{
    const QRect source(widget->mapTo(&window, area.topLeft()), area.size());
    QImage picture(area.size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    window.render(&picture, QPoint(), source);
    return picture;
}

void leaveWithoutService()
{
    App::ServiceProfile profile;
    profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
    profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
    App::ServiceProfile::setCurrent(profile);
}

} // namespace ZorvaneClient::Tests
