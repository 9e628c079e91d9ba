// SPDX-License-Identifier: MIT
#include <QCheckBox>
#include <QGridLayout>
#include <QPointer>
#include <QScopedPointer>
#include <QtTest>

#include <cstdio>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Application.h"
#include "App/ServiceProfile.h"
#include "GUI/CameraWidget.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/MouseDrag.h"
#include "tests/support/Roster.h"
#include "tests/support/VirtualDisplay.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using namespace ZorvaneClient::GUI;

/// Drag and drop in the main window with the pointer of a real X server, from press to release.
class DragTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cameraToPlaceholder();
    void cameraToTile();
    void tileToTile();
    void tileToPlaceholder();
    void tileToItself();
    void tileToAnotherWindowIsRefused();
    void serverToGrid();
    void layoutToGrid();

private:
    QWidget *cell(int row, int column) const;
    CameraWidget *cameraCard(const QString &name) const;
    ServerWidget *serverEntry(const QString &id) const;
    LayoutWidget *grid() const { return window->findChild<LayoutWidget *>(); }

    QScopedPointer<MainWindow> window;
};

namespace {

constexpr int screenWidth = 1280;
constexpr int screenHeight = 1440;
const QString placeholderClass = QStringLiteral("ZorvaneClient::GUI::Player::VideoPlaceholder");
const QString tileClass = QStringLiteral("ZorvaneClient::GUI::Player::VideoWidget");
const QString gridClass = QStringLiteral("ZorvaneClient::GUI::LayoutWidget");

QWidget *widgetAt(const LayoutWidget *grid, int row, int column)
{
    const auto *cells = qobject_cast<QGridLayout *>(grid->layout());
    QLayoutItem *item = cells->itemAtPosition(row, column);
    return item ? item->widget() : nullptr;
}

/// Such as "a . | . b"; "?" where the tile and the layout disagree.
QString cellsOf(const LayoutWidget *grid)
{
    const API::LayoutPtr layout = grid->workingLayout();
    QStringList lines;
    for (int row = 0; row < layout->rows(); ++row) {
        QStringList line;
        for (int column = 0; column < layout->columns(); ++column) {
            const auto *tile = qobject_cast<Player::VideoWidget *>(widgetAt(grid, row, column));
            const API::CameraPtr camera = layout->cellAt(row, column).camera;
            if (!tile && !camera)
                line.append(QStringLiteral("."));
            else if (tile && tile->camera() == camera)
                line.append(camera->name());
            else
                line.append(QStringLiteral("?"));
        }
        lines.append(line.join(QLatin1Char(' ')));
    }
    return lines.join(QStringLiteral(" | "));
}

MainWindow *shownWindow(int top)
{
    auto *window = new MainWindow;
    window->move(0, top);
    window->show();
    return window;
}

} // namespace

void DragTest::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    App::ServiceProfile profile;
    profile.apiHost = profile.streamingHost = QStringLiteral("127.0.0.1");
    profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
    App::ServiceProfile::setCurrent(profile);
    addServerToRoster(QStringLiteral("gate"), {"a", "b"});
    addServerToRoster(QStringLiteral("yard"), {"c", "d", "e"});
    const auto layout = API::LayoutPtr::create();
    layout->setName(QString::fromUtf8("Ночь & день"));
    layout->resize(1, 2);
    layout->setCamera(rosterCamera(QStringLiteral("yard"), 3), 0, 1, 1, 1);
    API::CloudAPIClient().addLayout(layout);
}

void DragTest::init()
{
    window.reset(shownWindow(0));
    QVERIFY(QTest::qWaitForWindowExposed(window.data()));
    window->findChild<RosterWidget *>()->updateRoster();
    const auto layout = API::LayoutPtr::create();
    layout->resize(2, 2);
    layout->setCamera(rosterCamera(QStringLiteral("gate"), 1), 0, 0, 1, 1);
    layout->setCamera(rosterCamera(QStringLiteral("gate"), 2), 0, 1, 1, 1);
    window->openLayout(layout);
    QCOMPARE(cellsOf(grid()), QStringLiteral("a b | . ."));
}

void DragTest::cleanup()
{
    window.reset();
}

QWidget *DragTest::cell(int row, int column) const
{
    return widgetAt(grid(), row, column);
}

ServerWidget *DragTest::serverEntry(const QString &id) const
{
    const QList<ServerWidget *> entries = window->findChildren<ServerWidget *>();
    for (ServerWidget *entry : entries) {
        if (entry->server()->id() == id)
            return entry;
    }
    return nullptr;
}

CameraWidget *DragTest::cameraCard(const QString &name) const
{
    const QList<CameraWidget *> cards = window->findChildren<CameraWidget *>();
    for (CameraWidget *card : cards) {
        if (card->camera()->name() != name)
            continue;
        window->findChild<RosterWidget *>()->ensureWidgetVisible(card);
        return card;
    }
    return nullptr;
}

void DragTest::cameraToPlaceholder()
{
    const QPointer<QWidget> placeholder = cell(1, 0);
    MouseDrag drag(cameraCard(QStringLiteral("c")), placeholder);
    bool wasLit = false;
    QVERIFY(drag.run([&] { wasLit = placeholder->property("drop").toBool(); }));
    QVERIFY(wasLit);
    QCOMPARE(drag.takenBy(), placeholderClass);
    QCOMPARE(cellsOf(grid()), QStringLiteral("a b | c ."));
    QTRY_VERIFY(!placeholder);
}

void DragTest::cameraToTile()
{
    const QPointer<QWidget> tile = cell(0, 1);
    MouseDrag drag(cameraCard(QStringLiteral("c")), tile);
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), tileClass);
    QCOMPARE(cellsOf(grid()), QStringLiteral("a c | . ."));
    QTRY_VERIFY(!tile);
}

void DragTest::tileToTile()
{
    QWidget *dragged = cell(0, 0);
    QWidget *other = cell(0, 1);
    MouseDrag drag(dragged, other);
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), tileClass);
    QCOMPARE(cellsOf(grid()), QStringLiteral("b a | . ."));
    QVERIFY2(cell(0, 0) == other && cell(0, 1) == dragged, "tiles were made anew");
}

void DragTest::tileToPlaceholder()
{
    MouseDrag drag(cell(0, 0), cell(1, 1));
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), placeholderClass);
    QCOMPARE(cellsOf(grid()), QStringLiteral(". b | . a"));
}

void DragTest::tileToItself()
{
    QSignalSpy modified(grid(), &LayoutWidget::layoutModified);
    MouseDrag drag(cell(0, 0), cell(0, 0));
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), tileClass);
    QCOMPARE(cellsOf(grid()), QStringLiteral("a b | . ."));
    QCOMPARE(modified.count(), 0);
}

void DragTest::tileToAnotherWindowIsRefused()
{
    const QScopedPointer<MainWindow> other(shownWindow(screenHeight / 2));
    QVERIFY(QTest::qWaitForWindowExposed(other.data()));
    const auto *otherGrid = other->findChild<LayoutWidget *>();
    MouseDrag drag(cell(0, 0), widgetAt(otherGrid, 0, 0));
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), QString());
    QCOMPARE(cellsOf(grid()), QStringLiteral("a b | . ."));
    QCOMPARE(cellsOf(otherGrid), QStringLiteral("."));
}

void DragTest::serverToGrid()
{
    ServerWidget *server = serverEntry(QStringLiteral("yard"));
    auto *heading = server->findChild<QWidget *>(QStringLiteral("controlBar"));
    window->findChild<RosterWidget *>()->ensureWidgetVisible(heading);
    MouseDrag drag(heading, grid());
    bool wasLit = false;
    QVERIFY(drag.run([&] { wasLit = grid()->property("drop").toBool(); }));
    QVERIFY(wasLit);
    QCOMPARE(drag.takenBy(), gridClass);
    // Three cameras on two free cells of two columns: one row more.
    QCOMPARE(cellsOf(grid()), QStringLiteral("a b | c d | e ."));
    QCoreApplication::processEvents();
    QVERIFY(server->findChild<QCheckBox *>(QStringLiteral("expandButton"))->isChecked());
}

void DragTest::layoutToGrid()
{
    window->setLayoutsMode();
    window->findChild<LayoutListWidget *>()->updateLayouts();
    MouseDrag drag(window->findChild<LayoutCard *>(), grid());
    QVERIFY(drag.run());
    QCOMPARE(drag.takenBy(), gridClass);
    QCOMPARE(cellsOf(grid()), QStringLiteral(". e"));
}

int main(int argc, char **argv)
{
    const VirtualDisplay display(screenWidth, screenHeight);
    if (display.name().isEmpty()) {
        std::fprintf(stderr, "DragTest: Xvfb did not start\n");
        return 1;
    }
    display.use();
    QApplication application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    DragTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "DragTest.moc"
