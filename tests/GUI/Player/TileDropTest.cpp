// SPDX-License-Identifier: MIT
#include <QDataStream>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::GUI::Player;
using namespace ZorvaneClient::Tests;

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
    void initTestCase();
    void cleanupTestCase();
    void movesStartADrag_data();
    void movesStartADrag();
    void accepts_data();
    void accepts();
    void ownCameraChangesNothing();
    void damagedPayloads_data();
    void damagedPayloads();
    void otherActions();
    void placeholderShowsTheDrag();

private:
    API::LocalServerPtr server;
    API::CameraPtr known;
};

void TileDropTest::initTestCase()
{
    server = API::LocalServerPtr::create(QStringLiteral("Home"), QStringLiteral("127.0.0.1"),
                                         MisbehavingServer::deadPort(), QString());
    known = localCamera(QStringLiteral("Yard"));
    known->setId(server->id(), 5);
    server->addCamera(known);
    API::CloudAPIClient().addLocalServer(server);
    QVERIFY(API::CloudAPIClient::serverList().contains(server->id()));
}

void TileDropTest::cleanupTestCase()
{
    API::CloudAPIClient().deleteLocalServer(server);
}

void TileDropTest::movesStartADrag_data()
{
    QTest::addColumn<QPoint>("move");
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("starts");
    QTest::newRow("both ways") << QPoint(3, 2) << int(Qt::LeftButton) << true;
    QTest::newRow("back") << QPoint(-5, 0) << int(Qt::LeftButton) << true;
    QTest::newRow("too short") << QPoint(2, -2) << int(Qt::LeftButton) << false;
    QTest::newRow("no button") << QPoint(30, 30) << int(Qt::NoButton) << false;
    QTest::newRow("other button") << QPoint(30, 30) << int(Qt::RightButton) << false;
}

void TileDropTest::movesStartADrag()
{
    QFETCH(QPoint, move);
    QFETCH(int, button);
    QFETCH(bool, starts);
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
    QCOMPARE(drag->mimeData()->data(QStringLiteral("layout-swap")), cellPayload(2, 3));
    QCOMPARE(drag->hotSpot(), QPoint(80, 50));
    QVERIFY(drag->pixmap().width() > tile.width());        // tilted
    QCOMPARE(pixelOf(tile, 160, 120), QColor(25, 25, 29)); // dimmed no more
}

void TileDropTest::accepts_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("action");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("camera") << "camera" << int(Qt::CopyAction) << true;
    QTest::newRow("tile from nowhere") << "layout-swap" << int(Qt::MoveAction) << false;
    QTest::newRow("camera being moved from nowhere") << "camera" << int(Qt::MoveAction) << false;
    QTest::newRow("server") << "server" << int(Qt::CopyAction) << false;
    QTest::newRow("layout") << "layout" << int(Qt::CopyAction) << false;
    QTest::newRow("text") << "text/plain" << int(Qt::CopyAction) << false;
}

void TileDropTest::accepts()
{
    QFETCH(QString, format);
    QFETCH(int, action);
    QFETCH(bool, isAccepted);
    VideoWidget tile(localCamera());
    VideoPlaceholder placeholder;
    QMimeData data;
    data.setData(format, "x");
    for (QWidget *target : {static_cast<QWidget *>(&tile), static_cast<QWidget *>(&placeholder)}) {
        QDragEnterEvent event(QPoint(5, 5), Qt::DropActions(action), &data, Qt::LeftButton,
                              Qt::NoModifier);
        event.setAccepted(!isAccepted);
        QApplication::sendEvent(target, &event);
        QCOMPARE(event.isAccepted(), isAccepted);
    }
}

void TileDropTest::ownCameraChangesNothing()
{
    VideoWidget tile(known);
    const auto wishes = watch(tile);
    QMimeData data;
    data.setData(QStringLiteral("camera"), cameraPayload(server->id(), 5));
    drop(tile, data, Qt::CopyAction);
    QVERIFY(wishes->cameras.isEmpty());
}

void TileDropTest::damagedPayloads_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("action");
    const int copy = Qt::CopyAction;
    const int move = Qt::MoveAction;
    QTest::newRow("no camera") << "camera" << QByteArray() << copy;
    QTest::newRow("cut camera") << "camera" << cameraPayload(server->id(), 5).left(9) << copy;
    QTest::newRow("no number") << "camera" << cameraPayload(server->id(), 5).chopped(4) << copy;
    QTest::newRow("endless name") << "camera" << QByteArray("\x7f\xff\xff\xf0 abc") << copy;
    QTest::newRow("unknown server") << "camera" << cameraPayload("nowhere", 5) << copy;
    QTest::newRow("unknown camera") << "camera" << cameraPayload(server->id(), 6) << copy;
    QTest::newRow("no cell") << "layout-swap" << QByteArray() << move;
    QTest::newRow("half a cell") << "layout-swap" << cellPayload(1, 2).left(4) << move;
}

void TileDropTest::damagedPayloads()
{
    QFETCH(QString, format);
    QFETCH(QByteArray, payload);
    QFETCH(int, action);
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

void TileDropTest::otherActions()
{
    VideoWidget tile(localCamera());
    const auto wishes = watch(tile);
    QMimeData data;
    data.setData(QStringLiteral("camera"), cameraPayload(server->id(), 5));
    data.setData(QStringLiteral("layout-swap"), cellPayload(1, 2));
    drop(tile, data, Qt::LinkAction);
    QVERIFY(wishes->cameras.isEmpty() && wishes->swaps.isEmpty());
}

void TileDropTest::placeholderShowsTheDrag()
{
    const QColor selection(0x3e, 0xb7, 0xfd);
    const QColor background(25, 25, 29);
    VideoPlaceholder placeholder;
    placeholder.resize(200, 150);
    placeholder.show();
    QCOMPARE(pixelOf(placeholder, 0, 75), background);
    QMimeData data;
    data.setData(QStringLiteral("camera"), "x");
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

QTEST_MAIN(TileDropTest)
#include "TileDropTest.moc"
