// SPDX-License-Identifier: MIT
#include <cstdlib>

#include <xcb/xcb.h>

#include "App/Application.h"
#include "GUI/CameraWidget.h"
#include "GUI/CloudToolTip.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/TimelineTooltip.h"
#include "tests/GUI/GridWorld.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/RealPointer.h"
#include "tests/support/ScriptedChild.h"
#include "tests/support/VirtualDisplay.h"

using namespace ZorvaneClient::GUI;

namespace {

constexpr int screenHeight = 1440;
constexpr int deadlineMs = 40000;

/// Qt has a window of its own that follows the pointer as long as a drag is on.
bool isDragOn()
{
    const QWindowList windows = QGuiApplication::allWindows();
    return std::any_of(windows.begin(), windows.end(), [](const QWindow *window) {
        return window->inherits("QShapedPixmapWindow") && window->isVisible();
    });
}

/// One drag with the pointer of the X display, from the middle of one widget to a place near the
/// middle of another, or of the same. The button is let go once the target, be it willing or
/// not, has been asked whether it takes the drag.
class MouseDrag : public QObject
{
public:
    MouseDrag(QWidget *dragged, QWidget *place)
        : source(dragged), target(place), unlit(place->grab().toImage())
    {
        qApp->installEventFilter(this);
    }

    /// The class that was given the drop, or how the drag ended otherwise.
    QString run()
    {
        const auto isReached = [this] {
            const QPoint place = middleOf(source);
            if (QCursor::pos() != place)
                moveTo(place);
            const QWidget *hit = QApplication::widgetAt(place);
            return source->underMouse() && (hit == source || source->isAncestorOf(hit));
        };
        if (!QTest::qWaitFor(isReached, deadlineMs))
            return "not reached"_s;
        xdotool("mousedown 1"_s);
        startTimer(10);
        time.start();
        // Looked at outside the drag's own loop only, so the source has come back from it.
        return QTest::qWaitFor([this] { return isOver; }, 2 * deadlineMs) ? taker : "stuck"_s;
    }

    /// The target looked otherwise when it was asked.
    bool wasLit = false;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        const QEvent::Type type = event->type();
        if (type == QEvent::DragEnter || type == QEvent::DragMove)
            isAsked = isAsked || object == target;
        if (type == QEvent::Drop && object->isWidgetType())
            taker = QString(object->metaObject()->className()).section(':', -1);
        return false;
    }

    /// Goes on inside the drag's own event loop too.
    void timerEvent(QTimerEvent *) override
    {
        const bool isDown = QApplication::mouseButtons() == Qt::LeftButton;
        const bool isLate = time.hasExpired(deadlineMs);
        if (isReleased) {
            isOver = !isDragOn() && !isDown;
        } else if (isLate || (isDown && isAsked && isDragOn())) {
            wasLit = target->grab().toImage() != unlit;
            if (isLate) {
                taker = isAsked ? "no drag"_s : "not asked"_s;
                QDrag::cancel();
            }
            isReleased = true;
            xdotool("mouseup 1"_s);
        } else if (isDown) {
            // Two places in turn: a drag hears of the pointer only when it moves.
            const QPoint place = middleOf(target) + QPoint(30, 20);
            moveTo(QCursor::pos() == place ? place + QPoint(1, 0) : place);
        }
    }

private:
    static QPoint middleOf(const QWidget *widget)
    {
        return widget->mapToGlobal(widget->rect().center());
    }

    QPointer<QWidget> source;
    QPointer<QWidget> target;
    QImage unlit;
    QString taker;
    QElapsedTimer time;
    bool isAsked = false;
    bool isReleased = false;
    bool isOver = false;
};

/// The card of the third camera, the last server or the layout, the whole grid, or one cell.
QWidget *widgetFor(const MainWindow &window, const QString &words)
{
    const QStringList place = words.split(' ');
    if (place.size() == 3) {
        QWidget *cell = widgetAt(*gridOf(window), place.at(1).toInt(), place.at(2).toInt());
        if (place.first() == "alone"_s)
            gridOf(window)->toggleMaximised(qobject_cast<Player::VideoWidget *>(cell));
        return cell;
    }
    if (words == "grid"_s)
        return gridOf(window);
    QWidget *card = window.findChild<LayoutCard *>();
    if (words == "camera"_s)
        card = window.findChildren<CameraWidget *>().at(2);
    else if (words == "server"_s)
        card = window.findChildren<ServerWidget *>().last()->findChild<QWidget *>("controlBar"_s);
    window.findChild<RosterWidget *>()->ensureWidgetVisible(card);
    return card;
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
        useServiceAt(MisbehavingServer::deadPort());
        addServerToRoster("gate"_s, {"a", "b"});
        addServerToRoster("yard"_s, {"c", "d", "e"}, true);
        const API::LayoutPtr layout = layoutOf(". e"_s);
        layout->setName("Ночь & день"_s);
        API::CloudAPIClient().addLayout(layout);
    }

    void drag_data()
    {
        rows<QString, QString, QString, QString>(
            {"from", "to", "taker", "after"},
            {{"camera to a placeholder", "camera", "cell 1 0", "VideoPlaceholder", "a b | c ."},
             {"camera to a tile", "camera", "cell 0 1", "VideoWidget", "a c | . ."},
             {"tile to a tile", "cell 0 0", "cell 0 1", "VideoWidget", "b a | . ."},
             {"tile to a placeholder", "cell 0 0", "cell 1 1", "VideoPlaceholder", ". b | . a"},
             {"from one alone", "alone 0 0", "cell 0 1", "VideoWidget", "b a | . ."},
             {"tile to itself", "cell 0 0", "cell 0 0", "VideoWidget", "a b | . ."},
             {"tile to another window", "cell 0 0", "other", "", "a b | . ."},
             {"server to the grid", "server", "grid", "LayoutWidget", "a b | c d | e ."},
             {"layout to the grid", "layout", "grid", "LayoutWidget", ". e"}});
    }

    void drag()
    {
        const auto [from, to, taker, after] = row<QString, QString, QString, QString>();
        MainWindow window;
        MainWindow other;
        other.move(0, screenHeight / 2);
        for (MainWindow *shown : {&window, &other}) {
            shown->show();
            QVERIFY(QTest::qWaitForWindowExposed(shown));
        }
        window.findChild<RosterWidget *>()->updateRoster();
        window.findChild<LayoutListWidget *>()->updateLayouts();
        // The window comes up with the page that was open last.
        from == "layout"_s ? window.setLayoutsMode() : window.setRosterMode();
        window.openLayout(layoutOf("a b | . ."_s));
        QSignalSpy modified(gridOf(window), &LayoutWidget::layoutModified);

        QWidget *target = to == "other"_s ? widgetFor(other, "cell 0 0"_s) : widgetFor(window, to);
        MouseDrag drag(widgetFor(window, from), target);
        QCOMPARE(drag.run(), taker);
        QCOMPARE(drag.wasLit, !taker.isEmpty());
        QTRY_COMPARE(misledByThePointer(), QString());
        QCOMPARE(cellsOf(*gridOf(window)), after);
        QCOMPARE(modified.isEmpty(), after == "a b | . ."_s);
        QCOMPARE(cellsOf(*gridOf(other)), "."_s);
        // A drag is no click.
        for (const auto *button : window.findChildren<QCheckBox *>("expandButton"_s))
            QVERIFY(button->isChecked());
    }

    /// Without a compositor, which would show what is behind a translucent window.
    void bubblesHaveNoBlackCorners()
    {
        const QColor behind(Qt::green);
        QWidget ground;
        ground.setPalette(behind);
        ground.resize(500, 400);
        ground.show();
        QVERIFY(QTest::qWaitForWindowExposed(&ground));
        TimelineTooltip time;
        GridSizeEditor size(&ground);
        time.move(100, 100);
        time.show();
        size.move(100, 200);
        size.show();
        CloudToolTip::showTip("A tip of some words"_s, QPoint(300, 200), &ground);
        for (const QWidget *bubble :
             QWidgetList{&time, &size, ground.findChild<CloudToolTip *>()}) {
            const auto seen = [](const QPoint &point) {
                return QGuiApplication::primaryScreen()->grabWindow(0).toImage().pixelColor(point);
            };
            const QRect place = bubble->geometry();
            QTRY_VERIFY(seen(QPoint(place.center().x(), place.top() + 5)) != behind);
            for (const QPoint &corner : {place.topLeft(), place.bottomRight()})
                QCOMPARE(seen(corner), behind);
        }
        // With one it is not cut. Whoever owns that is one.
        xcb_connection_t *composer = xcb_connect(nullptr, nullptr);
        const QScopeGuard leave([&] { xcb_disconnect(composer); });
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(composer)).data->root;
        xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(
            composer, xcb_intern_atom(composer, 0, 13, "_NET_WM_CM_S0"), nullptr);
        xcb_set_selection_owner(composer, root, atom->atom, XCB_CURRENT_TIME);
        std::free(xcb_get_selection_owner_reply(
            composer, xcb_get_selection_owner(composer, atom->atom), nullptr)); // it is done
        std::free(atom);
        CloudToolTip::showTip("A tip of some words"_s, QPoint(300, 200), &ground);
        QVERIFY(ground.findChild<CloudToolTip *>()->mask().isEmpty());
        CloudToolTip::hideTip();
    }

    /// Mouse and keys on a tile that plays.
    void closeLook()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.openLayout(layoutOf("c d"_s));
        const LayoutWidget &grid = *gridOf(window);
        QPointer<Player::VideoWidget> tile = grid.player(cameraNamed("c"_s));
        const auto hand = [&tile] { return tile->cursor().shape(); };
        moveTo(tile->mapToGlobal(tile->rect().center()));
        QTRY_VERIFY_WITH_TIMEOUT(tile->isPlaying() && tile->underMouse(), deadlineMs);
        xdotool("click --repeat 2 --delay 50 1"_s);
        QTRY_COMPARE_WITH_TIMEOUT(tile->size(), grid.size() - QSize(4, 4), deadlineMs);
        xdotool("click --repeat 9 4"_s);
        QTRY_COMPARE_WITH_TIMEOUT(hand(), Qt::OpenHandCursor, deadlineMs);
        xdotool("key Escape"_s);
        QTRY_COMPARE_WITH_TIMEOUT(hand(), Qt::ArrowCursor, deadlineMs);
        QVERIFY(!grid.isMaximised());
        // One that has no others beside it is alone from the start.
        window.openLayout(layoutOf("d"_s));
        tile = grid.player(cameraNamed("d"_s));
        QTRY_VERIFY_WITH_TIMEOUT(tile->isPlaying() && tile->underMouse(), deadlineMs);
        xdotool("click --repeat 9 4"_s);
        QTRY_COMPARE_WITH_TIMEOUT(hand(), Qt::OpenHandCursor, deadlineMs);
        xdotool("mousedown 1"_s);
        moveTo(QCursor::pos() + QPoint(60, 40));
        QTRY_COMPARE_WITH_TIMEOUT(hand(), Qt::ClosedHandCursor, deadlineMs);
        xdotool("mouseup 1"_s);
        QTRY_COMPARE_WITH_TIMEOUT(hand(), Qt::OpenHandCursor, deadlineMs);
        xdotool("key 0"_s);
        QTRY_COMPARE_WITH_TIMEOUT(hand(), Qt::ArrowCursor, deadlineMs);
    }

private:
    const ScriptedChild child{{"solid 64 48 ff0000ff", "print size 64 48\\nframe\\n"}};
};

int main(int argc, char **argv)
{
    const VirtualDisplay display(1280, screenHeight);
    display.use();
    // Never deleted: what the display's plugin keeps can be told from a leak while it is loaded.
    auto *application = new App::Application(argc, argv);
    application->setStyleSheet(App::Application::globalStyleSheet());
    DragTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "DragTest.moc"
