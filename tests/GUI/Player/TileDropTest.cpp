// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient::GUI::Player;

namespace {

QByteArray cameraPayload(const QString &server, int camera)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream << server << camera;
    return payload;
}

QByteArray cellPayload(int row, int column)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream << row << column;
    return payload;
}

/// What a target was asked for.
struct Wishes {
    QList<API::CameraPtr> cameras;
    QList<QPoint> swaps; ///< x is the column
};

template <typename Target>
std::shared_ptr<Wishes> watch(Target &target)
{
    const auto wishes = std::make_shared<Wishes>();
    QObject::connect(&target, &Target::openCamera, &target,
                     [wishes](const API::CameraPtr &camera) { wishes->cameras << camera; });
    QObject::connect(&target, &Target::swapRequested, &target,
                     [wishes](int row, int column) { wishes->swaps << QPoint(column, row); });
    return wishes;
}

/// Straight to the target: the application delivers only what is really being dragged.
void drop(QObject &target, const QMimeData &data, Qt::DropAction action)
{
    QDropEvent event(QPoint(5, 5), action, &data, Qt::LeftButton, Qt::NoModifier);
    target.event(&event);
}

} // namespace

/// Drops on the cells of a grid, filled and empty.
class TileDropTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        server = API::LocalServerPtr::create("Home"_s, "127.0.0.1"_s, MisbehavingServer::deadPort(),
                                             QString());
        known = localCamera("Yard"_s);
        known->setId(server->id(), 5);
        server->addCamera(known);
        API::CloudAPIClient().addLocalServer(server);
        QVERIFY(API::CloudAPIClient::serverList().contains(server->id()));
    }

    void cleanupTestCase() { API::CloudAPIClient().deleteLocalServer(server); }

    void movesStartADrag_data()
    {
        rows<QPoint, int, bool>({"move", "button", "starts"},
                                {
                                    {"both ways", QPoint(3, 2), int(Qt::LeftButton), true},
                                    {"back", QPoint(-5, 0), int(Qt::LeftButton), true},
                                    {"too short", QPoint(2, -2), int(Qt::LeftButton), false},
                                    {"no button", QPoint(30, 30), int(Qt::NoButton), false},
                                    {"other button", QPoint(30, 30), int(Qt::RightButton), false},
                                });
    }

    void movesStartADrag()
    {
        const auto [move, button, starts] = row<QPoint, int, bool>();
        QApplication::setStartDragDistance(5);
        VideoWidget tile(localCamera());
        tile.setPosition(2, 3);
        tile.show();
        const QPoint press(50, 40);
        QMouseEvent down(QEvent::MouseButtonPress, press, press, Qt::LeftButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&tile, &down);
        QMouseEvent moved(QEvent::MouseMove, press + move, press + move, Qt::NoButton,
                          Qt::MouseButtons(button), Qt::NoModifier);
        QApplication::sendEvent(&tile, &moved);
        const QDrag *drag = tile.findChild<QDrag *>();
        QCOMPARE(drag != nullptr, starts);
        if (!drag)
            return;
        QCOMPARE(drag->mimeData()->data("layout-swap"_s), cellPayload(2, 3));
        QCOMPARE(drag->hotSpot(), QPoint(80, 50));
        QVERIFY(drag->pixmap().width() > tile.width());        // tilted
        QCOMPARE(pixelOf(tile, 160, 120), QColor(25, 25, 29)); // dimmed no more
    }

    void accepts_data()
    {
        rows<QString, int, bool>(
            {"format", "action", "isAccepted"},
            {
                {"camera", "camera", int(Qt::CopyAction), true},
                {"tile from nowhere", "layout-swap", int(Qt::MoveAction), false},
                {"camera being moved from nowhere", "camera", int(Qt::MoveAction), false},
                {"server", "server", int(Qt::CopyAction), false},
                {"layout", "layout", int(Qt::CopyAction), false},
                {"text", "text/plain", int(Qt::CopyAction), false},
            });
    }

    void accepts()
    {
        const auto [format, action, isAccepted] = row<QString, int, bool>();
        VideoWidget tile(localCamera());
        VideoPlaceholder placeholder;
        QMimeData data;
        data.setData(format, "x");
        for (QWidget *target :
             {static_cast<QWidget *>(&tile), static_cast<QWidget *>(&placeholder)}) {
            QDragEnterEvent event(QPoint(5, 5), Qt::DropActions(action), &data, Qt::LeftButton,
                                  Qt::NoModifier);
            event.setAccepted(!isAccepted);
            QApplication::sendEvent(target, &event);
            QCOMPARE(event.isAccepted(), isAccepted);
        }
    }

    void ownCameraChangesNothing()
    {
        VideoWidget tile(known);
        const auto wishes = watch(tile);
        QMimeData data;
        data.setData("camera"_s, cameraPayload(server->id(), 5));
        drop(tile, data, Qt::CopyAction);
        QVERIFY(wishes->cameras.isEmpty());
    }

    void damagedPayloads_data()
    {
        const int copy = Qt::CopyAction;
        const int move = Qt::MoveAction;
        rows<QString, QByteArray, int>(
            {"format", "payload", "action"},
            {
                {"no camera", "camera", QByteArray(), copy},
                {"cut camera", "camera", cameraPayload(server->id(), 5).left(9), copy},
                {"no number", "camera", cameraPayload(server->id(), 5).chopped(4), copy},
                {"endless name", "camera", QByteArray("\x7f\xff\xff\xf0 abc"), copy},
                {"unknown server", "camera", cameraPayload("nowhere", 5), copy},
                {"unknown camera", "camera", cameraPayload(server->id(), 6), copy},
                {"no cell", "layout-swap", QByteArray(), move},
                {"half a cell", "layout-swap", cellPayload(1, 2).left(4), move},
            });
    }

    void damagedPayloads()
    {
        const auto [format, payload, action] = row<QString, QByteArray, int>();
        VideoWidget tile(localCamera());
        VideoPlaceholder placeholder;
        const auto ofTile = watch(tile);
        const auto ofPlaceholder = watch(placeholder);
        QMimeData data;
        data.setData(format, payload);
        drop(tile, data, Qt::DropAction(action));
        drop(placeholder, data, Qt::DropAction(action));
        QVERIFY(ofTile->cameras.isEmpty() && ofTile->swaps.isEmpty());
        QVERIFY(ofPlaceholder->cameras.isEmpty() && ofPlaceholder->swaps.isEmpty());
    }

    void otherActions()
    {
        VideoWidget tile(localCamera());
        const auto wishes = watch(tile);
        QMimeData data;
        data.setData("camera"_s, cameraPayload(server->id(), 5));
        data.setData("layout-swap"_s, cellPayload(1, 2));
        drop(tile, data, Qt::LinkAction);
        QVERIFY(wishes->cameras.isEmpty() && wishes->swaps.isEmpty());
    }

    void placeholderShowsTheDrag()
    {
        const QColor selection(0x3e, 0xb7, 0xfd);
        const QColor background(25, 25, 29);
        VideoPlaceholder placeholder;
        placeholder.resize(200, 150);
        placeholder.show();
        QCOMPARE(pixelOf(placeholder, 0, 75), background);
        QMimeData data;
        data.setData("camera"_s, "x");
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&placeholder, &enter);
        QCOMPARE(pixelOf(placeholder, 1, 75), selection);
        QDragLeaveEvent leave;
        QApplication::sendEvent(&placeholder, &leave);
        QCOMPARE(pixelOf(placeholder, 1, 75), background);

        QApplication::sendEvent(&placeholder, &enter);
        drop(placeholder, data, Qt::CopyAction);
        QCOMPARE(pixelOf(placeholder, 1, 75), background);
    }

private:
    API::LocalServerPtr server;
    API::CameraPtr known;
};

QTEST_MAIN(TileDropTest)
#include "TileDropTest.moc"
