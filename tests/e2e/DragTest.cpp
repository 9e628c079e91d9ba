// SPDX-License-Identifier: MIT
#include <QAction>
#include <QLineEdit>
#include <QPointer>
#include <QtTest>

#include <cstdio>

#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/MouseDrag.h"
#include "tests/e2e/Wall.h"
#include "tests/support/DemoService.h"
#include "tests/support/VirtualDisplay.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::Player::VideoWidget;

/// Drag and drop with the pointer of a real X server, from press to release.
class DragTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cameraToPlaceholder();
    void cameraToTile();
    void tileToTile();
    void tileToPlaceholder();
    void tileToItself();
    void tileToAnotherWindowIsRefused();
    void serverToGrid();
    void layoutToGrid();

private:
    QPoint placeOfCell(GUI::MainWindow *window, int row, int column);
    QPoint placeOfCard(const DemoCamera &camera);
    QPoint placeOfHeading(const QString &server);
    QList<int> numbersByName(const QString &server) const;
    bool dragTile(int fromRow, int fromColumn, int toRow, int toColumn);

    DemoService service;
    QVector<DemoCamera> world;
    QList<int> numbers;
    QString large; // a server of five
    WallPlan plan{2, 2};
    QPointer<GUI::MainWindow> window;
};

namespace {

constexpr int screenWidth = 1280;
constexpr int screenHeight = 1440;
const QColor selection(62, 183, 253);
const QString layoutName = QStringLiteral("Yard & gate");

// The bars of a tile under the pointer hide the strip.
#define COMPARE_WALL()                                                                             \
    QVERIFY(movePointer(QPoint(screenWidth - 1, screenHeight - 1)));                               \
    QTRY_COMPARE_WITH_TIMEOUT(paintedWall(window, plan.rows(), plan.columns()), plan.text(),       \
                              pictureDeadlineMs)

QPoint middleOf(const QWidget *widget)
{
    return widget->mapToGlobal(widget->rect().center());
}

} // namespace

void DragTest::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    DemoService::Options options;
    options.plain = true;
    options.servers = 1;
    options.cameras = 3;
    options.lanServers = 0;
    QVERIFY2(service.start(options), qPrintable(service.errorString()));
    useService(service);
    large = service.addServer(QStringLiteral("Warehouse"), 5);
    world = service.cameras();
    QCOMPARE(world.size(), 8);
    for (const DemoCamera &camera : qAsConst(world))
        numbers << camera.number;

    QVERIFY(enter(service));
    window = mainWindow();
    window->move(0, 0);
    QVERIFY(QTest::qWaitForWindowExposed(window));
    for (const DemoCamera &camera : qAsConst(world))
        QTRY_VERIFY_WITH_TIMEOUT(card(camera.server, camera.camera), pollDeadlineMs);
    window->openNewLayout();
    COMPARE_WALL();
}

void DragTest::cleanupTestCase()
{
    leave();
    service.stop();
}

QPoint DragTest::placeOfCell(GUI::MainWindow *inWindow, int row, int column)
{
    const API::LayoutPtr layout = gridOf(inWindow)->workingLayout();
    return middleOf(
        widgetInCell(gridOf(inWindow), {column, row}, layout->rows(), layout->columns()));
}

QPoint DragTest::placeOfCard(const DemoCamera &camera)
{
    GUI::CameraWidget *shown = card(camera.server, camera.camera);
    reveal(shown);
    return middleOf(shown);
}

QPoint DragTest::placeOfHeading(const QString &server)
{
    const QList<GUI::ServerWidget *> servers = window->findChildren<GUI::ServerWidget *>();
    for (GUI::ServerWidget *widget : servers) {
        if (widget->server()->id() != server)
            continue;
        auto *heading = widget->findChild<QWidget *>(QStringLiteral("controlBar"));
        window->findChild<GUI::RosterWidget *>()->ensureWidgetVisible(heading);
        QCoreApplication::processEvents();
        return middleOf(heading);
    }
    return QPoint();
}

QList<int> DragTest::numbersByName(const QString &server) const
{
    QMap<QString, int> byName;
    for (const DemoCamera &camera : world) {
        if (camera.server == server)
            byName.insert(camera.name, camera.number);
    }
    return byName.values();
}

bool DragTest::dragTile(int fromRow, int fromColumn, int toRow, int toColumn)
{
    MouseDrag drag(placeOfCell(window, fromRow, fromColumn), placeOfCell(window, toRow, toColumn));
    return drag.run() && !drag.takenBy().isEmpty();
}

void DragTest::cameraToPlaceholder()
{
    MouseDrag drag(placeOfCard(world.at(0)), placeOfCell(window, 0, 1));
    QWidget *placeholder = widgetInCell(gridOf(window), {1, 0}, 2, 2);
    bool wasLit = false;
    QVERIFY(drag.run([&] { wasLit = placeholder->property("drop").toBool(); }));
    QCOMPARE(drag.takenBy(), QStringLiteral("ZorvaneClient::GUI::Player::VideoPlaceholder"));
    QVERIFY(wasLit);
    plan.set(0, 1, numbers.at(0));
    COMPARE_WALL();
}

void DragTest::cameraToTile()
{
    MouseDrag drag(placeOfCard(world.at(1)), placeOfCell(window, 0, 1));
    QWidget *tile = widgetInCell(gridOf(window), {1, 0}, 2, 2);
    QColor edge;
    QVERIFY(drag.run([&] { edge = tile->grab().toImage().pixelColor(tile->width() / 2, 1); }));
    QCOMPARE(drag.takenBy(), QStringLiteral("ZorvaneClient::GUI::Player::VideoWidget"));
    QCOMPARE(edge, selection);
    plan.set(0, 1, numbers.at(1));
    COMPARE_WALL();
    QCOMPARE(window->playerCount(), 1);
}

void DragTest::tileToTile()
{
    MouseDrag drag(placeOfCard(world.at(0)), placeOfCell(window, 1, 1));
    QVERIFY(drag.run());
    plan.set(1, 1, numbers.at(0));
    COMPARE_WALL();

    const qint64 child = childOf(gridOf(window)->players().value(0));
    QVERIFY(dragTile(0, 1, 1, 1));
    plan.exchange({1, 0}, {1, 1});
    COMPARE_WALL();
    QVERIFY(everyTileMoves(window));
    QVERIFY2(childOf(gridOf(window)->players().value(0)) == child, "a swap starts no player");
}

void DragTest::tileToPlaceholder()
{
    QVERIFY(dragTile(1, 1, 0, 0));
    plan.exchange({1, 1}, {0, 0});
    COMPARE_WALL();
    QVERIFY(dragTile(0, 1, 1, 0));
    plan.exchange({1, 0}, {0, 1});
    COMPARE_WALL();
    QCOMPARE(gridOf(window)->workingLayout()->freeCellCount(), 2);
}

void DragTest::tileToItself()
{
    const QPoint place = placeOfCell(window, 0, 0);
    MouseDrag drag(place, place + QPoint(60, 30));
    QVERIFY(drag.run());
    COMPARE_WALL();
}

void DragTest::tileToAnotherWindowIsRefused()
{
    emit window->clone();
    QCOMPARE(mainWindows().size(), 2);
    const QList<GUI::MainWindow *> windows = mainWindows();
    GUI::MainWindow *other = windows.at(windows.at(0) == window ? 1 : 0);
    other->move(0, screenHeight - other->height());
    QVERIFY(QTest::qWaitForWindowExposed(other));
    QTRY_VERIFY(other->frameGeometry().top() > window->frameGeometry().bottom());
    QTRY_COMPARE(paintedWall(other, 1, 1), WallPlan(1, 1).text());

    MouseDrag drag(placeOfCell(window, 0, 0), placeOfCell(other, 0, 0));
    QVERIFY(drag.run());
    QVERIFY2(drag.takenBy().isEmpty(), qPrintable(drag.takenBy()));
    COMPARE_WALL();
    QCOMPARE(other->playerCount(), 0);
    const QPointer<GUI::MainWindow> gone(other);
    other->close();
    QTRY_VERIFY(!gone);
}

void DragTest::serverToGrid()
{
    window->findChild<QLineEdit *>(QStringLiteral("layoutNameEdit"))->setText(layoutName);
    press(window, "saveLayoutButton");

    MouseDrag drag(placeOfHeading(large), placeOfCell(window, 0, 1));
    bool wasLit = false;
    QVERIFY(drag.run([&] { wasLit = gridOf(window)->property("drop").toBool(); }));
    QCOMPARE(drag.takenBy(), QStringLiteral("ZorvaneClient::GUI::LayoutWidget"));
    QVERIFY(wasLit);
    // Five cameras on two free cells of two columns: two rows more.
    plan.resize(4, 2);
    for (const int number : numbersByName(large))
        plan.append(number);
    COMPARE_WALL();
}

void DragTest::layoutToGrid()
{
    press(window, "saveLayoutButton");
    window->findChild<QAction *>(QStringLiteral("actionClose"))->trigger();
    QTRY_COMPARE(paintedWall(window, 1, 1), WallPlan(1, 1).text());
    press(window, "layoutsButton");
    QTRY_VERIFY_WITH_TIMEOUT(layoutCard(window, layoutName), pollDeadlineMs);
    QCoreApplication::processEvents();

    MouseDrag drag(middleOf(layoutCard(window, layoutName)), placeOfCell(window, 0, 0));
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), QStringLiteral("ZorvaneClient::GUI::LayoutWidget"));
    COMPARE_WALL();
    QVERIFY(everyTileMoves(window));
}

int main(int argc, char **argv)
{
    const VirtualDisplay display(screenWidth, screenHeight);
    if (display.name().isEmpty()) {
        std::fprintf(stderr, "DragTest: Xvfb did not start\n");
        return 1;
    }
    display.use();
    return runEndToEnd(argc, argv, [] { return std::make_unique<DragTest>(); });
}
#include "DragTest.moc"
