// SPDX-License-Identifier: MIT
#include "API/Camera.h"
#include "GUI/DragFormats.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/Roster.h"

using namespace GUI::Player;

namespace {

const QColor background(25, 25, 29);
const QColor dimmed(34, 36, 41);
const QColor selection(62, 183, 253);

template <typename... Values>
QByteArray payloadOf(const Values &...values)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    (stream << ... << values);
    return payload;
}

QColor colourOf(QWidget &widget, int x, int y)
{
    return widget.grab().toImage().pixelColor(x, y);
}

/// What `target` asks for when that is dropped. It goes straight to the target: the application
/// delivers only what is really being dragged.
template <typename Target>
QString wishOf(Target &target, const QMimeData &data, Qt::DropAction action)
{
    QString wish;
    QObject context;
    QObject::connect(&target, &Target::openCamera, &context,
                     [&wish](const API::CameraPtr &camera) { wish += camera->name(); });
    QObject::connect(&target, &Target::swapRequested, &context,
                     [&wish](int row, int column) { wish += "%1 %2"_s.arg(row).arg(column); });
    QDropEvent event(QPoint(5, 5), action, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject &>(target).event(&event);
    return wish;
}

/// True if `target` answers to a drag that enters as expected.
bool answers(QWidget &target, const QMimeData &data, Qt::DropAction action, bool isWelcome)
{
    QDragEnterEvent event(QPoint(5, 5), action, &data, Qt::LeftButton, Qt::NoModifier);
    event.setAccepted(!isWelcome);
    QApplication::sendEvent(&target, &event);
    return event.isAccepted() == isWelcome;
}

} // namespace

/// Drags of tiles, and drops on the cells of a grid, filled and empty.
class TileDropTest : public QObject
{
    Q_OBJECT

public:
    /// A platform whose drags have an event loop, without a display.
    static void initMain() { qputenv("QT_QPA_PLATFORM", "minimal"); }

private slots:
    void initTestCase() { addServerToRoster("home"_s, {"Yard 1"_s, "Yard 2"_s}); }

    void eachFormatCarriesOneThing()
    {
        const API::camera_global_id_t id{"Ночь & день"_s, -7};
        const API::LayoutPoint cell{3, 2};
        const QSharedPointer<QMimeData> camera(GUI::cameraDrag(id)), tile(GUI::tileDrag(cell)),
            server(GUI::serverDrag(id.server)), layout(GUI::layoutDrag(id.server));
        QCOMPARE(camera->data("camera"_s), payloadOf(id.server, -7));
        QCOMPARE(server->data("server"_s), payloadOf(id.server));
        QCOMPARE(layout->data("layout"_s), id.server.toUtf8());
        QCOMPARE(tile->data("layout-swap"_s), payloadOf(2, 3));
        for (const auto &data : {camera, server, layout, tile}) {
            QCOMPARE(GUI::draggedCamera(*data) == id, data == camera);
            QCOMPARE(GUI::draggedServer(*data) == id.server, data == server);
            QCOMPARE(GUI::draggedLayout(*data) == id.server, data == layout);
            QCOMPARE(GUI::draggedTile(*data) == cell, data == tile);
        }
    }

    void movesStartADrag_data()
    {
        rows<QPoint, int, bool>({"move", "button", "starts"},
                                {{"both ways", QPoint(3, 2), Qt::LeftButton, true},
                                 {"back", QPoint(-5, 0), Qt::LeftButton, true},
                                 {"too short", QPoint(2, -2), Qt::LeftButton, false},
                                 {"no button", QPoint(30, 30), Qt::NoButton, false},
                                 {"other button", QPoint(30, 30), Qt::RightButton, false}});
    }

    void movesStartADrag()
    {
        const auto [move, button, starts] = row<QPoint, int, bool>();
        QApplication::setStartDragDistance(5);
        QWidget grid;
        VideoWidget tile(localCamera(), &grid);
        VideoWidget sibling(localCamera(), &grid);
        VideoWidget stranger(localCamera());
        tile.setPosition(2, 3);
        grid.show();
        const QPoint press(50, 40);
        QTest::mousePress(&tile, Qt::LeftButton, Qt::NoModifier, press);
        QMouseEvent moved(QEvent::MouseMove, press + move, press + move, Qt::NoButton,
                          Qt::MouseButtons(button), Qt::NoModifier);
        bool wasDragging = false;
        QTimer::singleShot(0, &tile, [&] {
            wasDragging = true;
            QTest::keyClick(&tile, Qt::Key_Escape); // or else the drag goes on for ever
            const QDrag &drag = *tile.findChild<QDrag *>();
            QCOMPARE(drag.mimeData()->data("layout-swap"_s), payloadOf(2, 3));
            QCOMPARE(drag.hotSpot(), QPoint(80, 50));
            QVERIFY(drag.pixmap().width() > tile.width()); // tilted, and not dimmed
            QCOMPARE(drag.pixmap().toImage().pixelColor(drag.pixmap().rect().center()), background);
            QCOMPARE(colourOf(tile, 160, 120), dimmed);
            QVERIFY(answers(sibling, *drag.mimeData(), Qt::MoveAction, true));
            QVERIFY(answers(stranger, *drag.mimeData(), Qt::MoveAction, false));
        });
        QApplication::sendEvent(&tile, &moved);
        QCOMPARE(wasDragging, starts);
        QCOMPARE(colourOf(tile, 160, 120), background);
    }

    void drops_data()
    {
        const QByteArray own = payloadOf("home"_s, 1);
        const QByteArray cell = payloadOf(1, 2);
        const int copy = Qt::CopyAction;
        const int move = Qt::MoveAction;
        const int link = Qt::LinkAction;
        rows<QString, QByteArray, int, bool, QString, QString>(
            {"format", "payload", "action", "isWelcome", "wish", "wishOfPlaceholder"},
            {{"camera", "camera", payloadOf("home"_s, 2), copy, true, "Yard 2", "Yard 2"},
             {"own camera", "camera", own, copy, true, "", "Yard 1"},
             {"camera from nowhere", "camera", own, move, false, "", ""},
             {"linked camera", "camera", own, link, true, "", ""},
             {"no camera", "camera", "", copy, false, "", ""},
             {"cut camera", "camera", own.left(9), copy, true, "", ""},
             {"no number", "camera", own.chopped(4), copy, true, "", ""},
             {"endless name", "camera", "\x7f\xff\xff\xf0 abc", copy, true, "", ""},
             {"unknown server", "camera", payloadOf("nowhere"_s, 1), copy, true, "", ""},
             {"unknown camera", "camera", payloadOf("home"_s, 3), copy, true, "", ""},
             {"tile from nowhere", "layout-swap", cell, move, false, "1 2", "1 2"},
             {"linked tile", "layout-swap", cell, link, true, "", ""},
             {"half a cell", "layout-swap", cell.left(4), move, false, "", ""},
             {"server", "server", own, copy, false, "", ""}});
    }

    void drops()
    {
        const auto [format, payload, action, isWelcome, wish, wishOfPlaceholder] =
            row<QString, QByteArray, int, bool, QString, QString>();
        VideoWidget tile(rosterCamera("home"_s, 1));
        VideoPlaceholder placeholder;
        QMimeData data;
        data.setData(format, payload);
        QVERIFY(answers(tile, data, Qt::DropAction(action), isWelcome));
        QVERIFY(answers(placeholder, data, Qt::DropAction(action), isWelcome));
        QCOMPARE(wishOf(tile, data, Qt::DropAction(action)), wish);
        QCOMPARE(colourOf(tile, 1, 120), background); // a target no more
        const QColor shown = isWelcome ? selection : background;
        QCOMPARE(colourOf(placeholder, 1, 75), shown);
        QCOMPARE(wishOf(placeholder, data, Qt::DropAction(action)), wishOfPlaceholder);
        QCOMPARE(colourOf(placeholder, 1, 75), background);
        QVERIFY(answers(placeholder, data, Qt::DropAction(action), isWelcome));
        QCOMPARE(colourOf(placeholder, 1, 75), shown);
        QDragLeaveEvent leave;
        QApplication::sendEvent(&placeholder, &leave);
        QCOMPARE(colourOf(placeholder, 1, 75), background);
    }
};

QTEST_MAIN(TileDropTest)
#include "TileDropTest.moc"
