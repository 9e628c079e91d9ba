// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

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

using namespace ZorvaneClient::GUI;

namespace {

constexpr int screenWidth = 1280;
constexpr int screenHeight = 1440;
const QString placeholderClass = "ZorvaneClient::GUI::Player::VideoPlaceholder"_s;
const QString tileClass = "ZorvaneClient::GUI::Player::VideoWidget"_s;
const QString gridClass = "ZorvaneClient::GUI::LayoutWidget"_s;

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
                line.append("."_s);
            else if (tile && tile->camera() == camera)
                line.append(camera->name());
            else
                line.append("?"_s);
        }
        lines.append(line.join(QLatin1Char(' ')));
    }
    return lines.join(" | "_s);
}

MainWindow *shownWindow(int top)
{
    auto *window = new MainWindow;
    window->move(0, top);
    window->show();
    return window;
}

} // namespace

/// Drag and drop in the main window with the pointer of a real X server, from press to release.
class DragTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::platformName(), "xcb"_s);
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
        addServerToRoster("gate"_s, {"a", "b"});
        addServerToRoster("yard"_s, {"c", "d", "e"});
        const auto layout = API::LayoutPtr::create();
        layout->setName(QString::fromUtf8("Ночь & день"));
        layout->resize(1, 2);
        layout->setCamera(rosterCamera("yard"_s, 3), 0, 1, 1, 1);
        API::CloudAPIClient().addLayout(layout);
    }

    void init()
    {
        window.reset(shownWindow(0));
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
        window->findChild<RosterWidget *>()->updateRoster();
        const auto layout = API::LayoutPtr::create();
        layout->resize(2, 2);
        layout->setCamera(rosterCamera("gate"_s, 1), 0, 0, 1, 1);
        layout->setCamera(rosterCamera("gate"_s, 2), 0, 1, 1, 1);
        window->openLayout(layout);
        QCOMPARE(cellsOf(grid()), "a b | . ."_s);
    }

    void cleanup() { window.reset(); }

    void cameraToPlaceholder()
    {
        const QPointer<QWidget> placeholder = cell(1, 0);
        MouseDrag drag(cameraCard("c"_s), placeholder);
        bool wasLit = false;
        QVERIFY(drag.run([&] { wasLit = placeholder->property("drop").toBool(); }));
        QVERIFY(wasLit);
        QCOMPARE(drag.takenBy(), placeholderClass);
        QCOMPARE(cellsOf(grid()), "a b | c ."_s);
        QTRY_VERIFY(!placeholder);
    }

    void cameraToTile()
    {
        const QPointer<QWidget> tile = cell(0, 1);
        MouseDrag drag(cameraCard("c"_s), tile);
        QVERIFY(drag.run());
        QCOMPARE(drag.takenBy(), tileClass);
        QCOMPARE(cellsOf(grid()), "a c | . ."_s);
        QTRY_VERIFY(!tile);
    }

    void tileToTile()
    {
        QWidget *dragged = cell(0, 0);
        QWidget *other = cell(0, 1);
        MouseDrag drag(dragged, other);
        QVERIFY(drag.run());
        QCOMPARE(drag.takenBy(), tileClass);
        QCOMPARE(cellsOf(grid()), "b a | . ."_s);
        QVERIFY2(cell(0, 0) == other && cell(0, 1) == dragged, "tiles were made anew");
    }

    void tileToPlaceholder()
    {
        MouseDrag drag(cell(0, 0), cell(1, 1));
        QVERIFY(drag.run());
        QCOMPARE(drag.takenBy(), placeholderClass);
        QCOMPARE(cellsOf(grid()), ". b | . a"_s);
    }

    void tileToItself()
    {
        QSignalSpy modified(grid(), &LayoutWidget::layoutModified);
        MouseDrag drag(cell(0, 0), cell(0, 0));
        QVERIFY(drag.run());
        QCOMPARE(drag.takenBy(), tileClass);
        QCOMPARE(cellsOf(grid()), "a b | . ."_s);
        QCOMPARE(modified.count(), 0);
    }

    void tileToAnotherWindowIsRefused()
    {
        const QScopedPointer<MainWindow> other(shownWindow(screenHeight / 2));
        QVERIFY(QTest::qWaitForWindowExposed(other.data()));
        const auto *otherGrid = other->findChild<LayoutWidget *>();
        MouseDrag drag(cell(0, 0), widgetAt(otherGrid, 0, 0));
        QVERIFY(drag.run());
        QCOMPARE(drag.takenBy(), QString());
        QCOMPARE(cellsOf(grid()), "a b | . ."_s);
        QCOMPARE(cellsOf(otherGrid), "."_s);
    }

    void serverToGrid()
    {
        ServerWidget *server = serverEntry("yard"_s);
        auto *heading = server->findChild<QWidget *>("controlBar"_s);
        window->findChild<RosterWidget *>()->ensureWidgetVisible(heading);
        MouseDrag drag(heading, grid());
        bool wasLit = false;
        QVERIFY(drag.run([&] { wasLit = grid()->property("drop").toBool(); }));
        QVERIFY(wasLit);
        QCOMPARE(drag.takenBy(), gridClass);
        // Three cameras on two free cells of two columns: one row more.
        QCOMPARE(cellsOf(grid()), "a b | c d | e ."_s);
        QCoreApplication::processEvents();
        QVERIFY(server->findChild<QCheckBox *>("expandButton"_s)->isChecked());
    }

    void layoutToGrid()
    {
        window->setLayoutsMode();
        window->findChild<LayoutListWidget *>()->updateLayouts();
        MouseDrag drag(window->findChild<LayoutCard *>(), grid());
        QVERIFY(drag.run());
        QCOMPARE(drag.takenBy(), gridClass);
        QCOMPARE(cellsOf(grid()), ". e"_s);
    }

private:
    QWidget *cell(int row, int column) const { return widgetAt(grid(), row, column); }

    CameraWidget *cameraCard(const QString &name) const
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

    ServerWidget *serverEntry(const QString &id) const
    {
        const QList<ServerWidget *> entries = window->findChildren<ServerWidget *>();
        for (ServerWidget *entry : entries) {
            if (entry->server()->id() == id)
                return entry;
        }
        return nullptr;
    }

    LayoutWidget *grid() const { return window->findChild<LayoutWidget *>(); }

    QScopedPointer<MainWindow> window;
};

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
