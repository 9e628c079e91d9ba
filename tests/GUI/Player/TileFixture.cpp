// SPDX-License-Identifier: MIT
#include "tests/GUI/Player/TileFixture.h"

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/support/LogCapture.h"

namespace ZorvaneClient::Tests {

namespace {

const QColor background(25, 25, 29);

QString captured(const QString &text, const QString &pattern)
{
    return QRegularExpression(pattern).match(text).captured(1);
}

} // namespace

API::CameraPtr localCamera(const QString &name)
{
    const auto camera = API::CameraPtr::create();
    camera->setKind(API::LocalCamera);
    camera->setId("127.0.0.1:8080"_s, 3);
    camera->setName(name);
    camera->setSessionId("pass"_s);
    return camera;
}

API::CameraPtr cloudCamera(const QVariantMap &changes)
{
    const QVariantMap active{{"active"_s, true}};
    const QVariantMap services{{"enabled"_s, active}};
    QVariantMap json{{"id"_s, 7},
                     {"name"_s, "Gate"_s},
                     {"online"_s, true},
                     {"services"_s, services},
                     {"rights"_s, QStringList{"live", "archive"}}};
    for (auto change = changes.begin(); change != changes.end(); ++change)
        json.insert(change.key(), change.value());
    API::Server server(QVariantMap{{"id"_s, "srv"_s}});
    return API::CameraPtr::create(&server, json);
}

QString dumpOf(GUI::Player::VideoWidget &tile)
{
    const LogCapture log;
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&tile, &release);
    return log.linesOf("Activated camera:"_s).value(0);
}

QString stateOf(GUI::Player::VideoWidget &tile)
{
    return captured(dumpOf(tile), "\" state: (\\w+) last request time:"_s);
}

QString resolutionOf(GUI::Player::VideoWidget &tile)
{
    return captured(dumpOf(tile), "resolution: (\\S+ x \\S+) playback time:"_s)
        .remove(QLatin1Char(' '));
}

void tick(GUI::Player::VideoWidget &tile)
{
    QTimerEvent event(0);
    QApplication::sendEvent(&tile, &event);
}

bool showsText(GUI::Player::VideoWidget &tile, const QString &text)
{
    const QImage shown = tile.grab().toImage().convertToFormat(QImage::Format_RGB32);
    QImage expected(shown.size(), QImage::Format_RGB32);
    expected.fill(background);
    QPainter painter(&expected);
    QFont font = tile.font();
    font.setPixelSize(tile.width() >= 161 && tile.height() >= 121 ? 14 : 12);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(tile.rect(), Qt::AlignCenter | Qt::TextWordWrap, text);
    painter.end();
    return shown == expected;
}

QColor pixelOf(QWidget &widget, int x, int y)
{
    return widget.grab().toImage().pixelColor(x, y);
}

FakeClock::FakeClock(const QDateTime &start) : time(start)
{
    App::Environment::setClock([this] { return time; });
}

FakeClock::~FakeClock()
{
    App::Environment::setClock({});
}

QDateTime FakeClock::now() const
{
    return time;
}

void FakeClock::advance(int seconds)
{
    time = time.addSecs(seconds);
}

} // namespace ZorvaneClient::Tests
