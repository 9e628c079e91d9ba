// SPDX-License-Identifier: MIT
#include "tests/GUI/Player/TileFixture.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "tests/support/LogCapture.h"

using GUI::Player::VideoWidget;

namespace ZorvaneClient::Tests {

API::CameraPtr localCamera(const QString &name)
{
    auto camera = API::CameraPtr::create();
    camera->setKind(API::LocalCamera);
    camera->setId("127.0.0.1:8080"_s, 3);
    camera->setName(name);
    camera->setSessionId("pass"_s);
    return camera;
}

API::CameraPtr cloudCamera(const QVariantMap &changes)
{
    QVariantMap json{{"id"_s, 7},
                     {"name"_s, "Gate"_s},
                     {"online"_s, true},
                     {"services"_s, QVariantMap{{"enabled"_s, QVariantMap{{"active"_s, true}}}}},
                     {"rights"_s, QStringList{"live", "archive"}}};
    json.insert(changes);
    API::Server server(QVariantMap{{"id"_s, "srv"_s}});
    return API::CameraPtr::create(&server, json);
}

void takePointerAway()
{
    QCursor::setPos(10000, 10000);
}

ScriptedTile::ScriptedTile(const QString &script, const API::CameraPtr &camera)
    : VideoWidget(camera)
{
    setScript(script);
    takePointerAway();
    resize(320, 240);
    show();
    if (!QTest::qWaitForWindowExposed(this))
        qFatal("no window");
}

QStringList ScriptedTile::orders() const
{
    QStringList orders = commands();
    orders.removeAll("ping"_s);
    return orders;
}

bool ScriptedTile::playsLive()
{
    return playLive() && QTest::qWaitFor([this] { return stateOf(*this) == "Playing"_s; });
}

QString dumpOf(VideoWidget &tile)
{
    const LogCapture log;
    QTest::mouseRelease(&tile, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    return log.linesOf("Activated camera:"_s).value(0);
}

QString stateOf(VideoWidget &tile)
{
    return QRegularExpression(" state: (\\w+) last"_s).match(dumpOf(tile)).captured(1);
}

QString vlcStateOf(VideoWidget &tile)
{
    return QRegularExpression("VLC state: \"([^\"]*)"_s).match(dumpOf(tile)).captured(1);
}

void tick(VideoWidget &tile)
{
    QTimerEvent event(0);
    QApplication::sendEvent(&tile, &event);
}

QImage onScreen(const QWidget &window)
{
    const QPixmap shown = window.screen()->grabWindow(window.winId());
    return shown.toImage().convertToFormat(QImage::Format_RGB32);
}

bool showsText(VideoWidget &tile, const QString &text)
{
    return QTest::qWaitFor([&tile, &text] {
        const QImage shown = tile.isWindow() ? onScreen(tile) : tile.grab().toImage();
        QImage expected(shown.size(), QImage::Format_RGB32);
        expected.fill(QColor(25, 25, 29));
        QPainter painter(&expected);
        QFont font = tile.font();
        font.setPixelSize(tile.width() >= 161 && tile.height() >= 121 ? 14 : 12);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(tile.rect(), Qt::AlignCenter | Qt::TextWordWrap, text);
        painter.end();
        return !shown.isNull() && shown.convertToFormat(QImage::Format_RGB32) == expected;
    });
}

} // namespace ZorvaneClient::Tests
