// SPDX-License-Identifier: MIT
#include "App/Application.h"
#include "App/Environment.h"
#include "GUI/CloudToolTip.h"
#include "GUI/ControlPanel.h"
#include "GUI/Kiosk.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/RosterWidget.h"
#include "GUI/TippedButton.h"
#include "tests/GUI/GridWorld.h"
#include "tests/support/FakeTime.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/RealPointer.h"
#include "tests/support/VirtualDisplay.h"

using namespace ZorvaneClient::GUI;
using namespace std::chrono_literals;

namespace {

constexpr int stepPixels = 4;
constexpr int deadlineMs = 40000;

/// In the thread of the windows, also while a menu or a drag has an event loop of its own there.
void inWindows(const std::function<void()> &task)
{
    QMetaObject::invokeMethod(qApp, task, Qt::BlockingQueuedConnection);
}

bool comesTrue(const std::function<bool()> &condition)
{
    bool isTrue = false;
    for (QDeadlineTimer deadline(deadlineMs); !isTrue && !deadline.hasExpired();) {
        inWindows([&] { isTrue = condition(); });
        QThread::msleep(5);
    }
    return isTrue;
}

} // namespace

/// What the pointer of a real X server does to what it passes over.
class HoverTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::platformName(), "xcb"_s);
        // Two windows show the same time.
        App::Environment::setClock([] { return QDateTime(QDate(2026, 8, 31), QTime(12, 0)); });
        useServiceAt(MisbehavingServer::deadPort());
        addServerToRoster("gate"_s, {"a", "b"});
    }

    void init() { showWindow(); }
    void cleanup() { window.reset(); }

    void noButtonMovesAwayFromThePointer_data()
    {
        rows<bool, QString>(
            {"archive", "unfolded"},
            {{"live", false, "soundSlider"}, {"archive", true, "soundSlider speedSlider"}});
    }

    void noButtonMovesAwayFromThePointer()
    {
        const auto [archive, unfolded] = row<bool, QString>();
        if (archive)
            find("showRecordsButton")->click();
        auto *bar = window->findChild<ControlPanel *>();
        const auto minimum = [this] { return window->layout()->totalMinimumSize().width(); };
        QTRY_COMPARE(find("speedButton")->isVisible(), archive);
        QTRY_VERIFY((window->resize(0, 0), window->width() == minimum()));
        QStringList unfoldedOnes;
        const auto places = [&] {
            QString text = "%1 %2"_s.arg(window->width()).arg(minimum());
            for (const auto *part : bar->findChildren<QWidget *>()) {
                const QString name = part->objectName();
                if (qobject_cast<const QPushButton *>(part) && part->isVisible())
                    text += " %1 %2"_s.arg(name).arg(part->mapTo(window.data(), QPoint()).x());
                if (qobject_cast<const QSlider *>(part) && part->isVisible())
                    unfoldedOnes.append(name);
            }
            unfoldedOnes.removeDuplicates();
            return text;
        };
        // Along the bar, and then from button to button at once.
        QVector<int> stops;
        for (int x = 1; x < bar->width(); x += stepPixels)
            stops.append(x);
        for (const char *name : {"soundButton", "speedButton", "soundButton", "fullscreenButton"})
            stops.append(find(name)->mapTo(bar, find(name)->rect().center()).x());
        const QString before = places();
        for (const int x : qAsConst(stops)) {
            QCursor::setPos(bar->mapToGlobal(QPoint(x, bar->height() / 2)));
            QTRY_COMPARE(misledByThePointer(), QString());
            QCOMPARE(places(), before);
        }
        unfoldedOnes.sort();
        QCOMPARE(unfoldedOnes.join(' '), unfolded);
    }

    void hoverFollowsThePointer_data()
    {
        rows<QString>({"steps"},
                      {{"menu left open", "menu a/settingsButton, over b, escape, over a"},
                       {"menu over its button", "menu a/settingsButton, escape"},
                       {"menu of the panel", "menu InfoPanel/settingsButton, over b, escape"},
                       {"fullscreen", "click fullscreenButton, over a, escape"},
                       {"side bar", "click hideRosterButton, click showPBtn"}});
    }

    /// The window looks as a new one does when the pointer comes to the same place.
    void hoverFollowsThePointer()
    {
        const QStringList steps = std::get<0>(row<QString>()).split(", "_s);
        QString failed;
        const QScopedPointer<QThread> person(QThread::create([&] {
            for (const QString &step : steps) {
                if (failed.isEmpty() && !take(step.section(' ', 0, 0), step.section(' ', 1)))
                    failed = step;
            }
        }));
        person->start();
        QTRY_VERIFY_WITH_TIMEOUT(person->isFinished(), 2 * deadlineMs);
        QCOMPARE(failed, QString());
        QCoreApplication::sendPostedEvents(); // what is to be laid out anew
        QTRY_COMPARE(misledByThePointer(), QString());

        const QImage seen = pictureOfPanels();
        const QPoint place = QCursor::pos();
        showWindow();
        QCursor::setPos(place);
        QTRY_COMPARE(pictureOfPanels(), seen);
    }

    /// Neither the pointer moves nor is anything shown or hidden.
    void anotherSizeUnderThePointer()
    {
        const QSize before = window->size();
        const auto isOver = [this](const QString &name) {
            return widget(name)->underMouse() && misledByThePointer().isEmpty();
        };
        QCursor::setPos(window->mapToGlobal(window->rect().bottomRight() - QPoint(200, 20)));
        QTRY_VERIFY(isOver("ControlPanel"_s));
        window->resize(before + QSize(0, 90)); // what was under it moves
        QTRY_VERIFY(isOver("b"_s));
        window->resize(before); // what is under it becomes smaller
        QTRY_VERIFY(isOver("ControlPanel"_s));
    }

    /// A pointer that is left on a tile is not seen after a while, nor are the bars of the tile.
    void aWallAtRest()
    {
        window->enterKiosk(QString());
        const QWidget *bar = widget("a/settingsButton"_s);
        for (int round = 0; round < 2; ++round) {
            const QPoint place = widget("a"_s)->mapToGlobal(QPoint(90, 90 + round));
            QTRY_VERIFY((QCursor::setPos(place), bar->isVisible()));
            QTRY_COMPARE(misledByThePointer(), QString());
            QCOMPARE(expireTimers(3s, window->findChild<Kiosk *>()), 1);
            QVERIFY(!bar->isVisible() && !widget("a"_s)->underMouse());
            window->openLayout(layoutOf(round == 0 ? "a b | . ."_s : "a ."_s));
            QCoreApplication::processEvents();
            bar = widget("a/settingsButton"_s);
            QVERIFY(!bar->isVisible());
        }
    }

    /// One that its own window took for the end of the hover would go and come for ever.
    void aTipStays()
    {
        LoginDialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const auto *button = dialog.findChild<TippedButton *>();
        QTRY_VERIFY((QCursor::setPos(button->mapToGlobal(QPoint(5, 5))),
                     dialog.findChild<CloudToolTip *>()));
        const QPointer<CloudToolTip> tip = dialog.findChild<CloudToolTip *>();
        QVERIFY(QTest::qWaitForWindowExposed(tip));
        QCoreApplication::processEvents();
        QVERIFY(tip);
        // It has its shape also where nobody composes the screen.
        QVERIFY(tip->mask().contains(tip->rect().center()) && !tip->mask().contains(QPoint()));
    }

private:
    static QPoint outside() { return {1500, 950}; }

    void showWindow()
    {
        QCursor::setPos(outside());
        window.reset(new MainWindow);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
        window->findChild<RosterWidget *>()->updateRoster();
        window->openLayout(layoutOf("a b"_s));
        QTRY_VERIFY(!window->underMouse());
    }

    /// All but the side bar, in which a cursor blinks.
    QImage pictureOfPanels() const
    {
        const QRect all = window->rect();
        return window->grab(all.adjusted(widget("InfoPanel"_s)->x(), 0, 0, 0)).toImage();
    }

    QPushButton *find(const QString &name) const { return window->findChild<QPushButton *>(name); }

    /// "a" and "b" are the tiles; other words are names of objects, "a/b" is b in a.
    QWidget *widget(const QString &name) const
    {
        QWidget *found = window.data();
        for (const QString &part : name.split('/'))
            found = part == "a"   ? widgetAt(*gridOf(*window), 0, 0)
                    : part == "b" ? widgetAt(*gridOf(*window), 0, 1)
                                  : found->findChild<QWidget *>(part);
        return found;
    }

    /// One step of a person, who waits for what it leads to; false if that doesn't come.
    bool take(const QString &verb, const QString &name)
    {
        const auto hasPopup = [] { return QApplication::activePopupWidget() != nullptr; };
        const auto isReleased = [] { return QApplication::mouseButtons() == Qt::NoButton; };
        if (verb == "escape") {
            inWindows([&] {
                QWidget *popup = QApplication::activePopupWidget();
                QTest::keyClick(popup ? popup : window.data(), Qt::Key_Escape);
            });
            return comesTrue([&] { return !hasPopup() && !window->isFullScreen(); });
        }
        QPoint place;
        if (name.contains('/'))
            take("over"_s, name.section('/', 0, 0)); // the bars of a tile come first
        const bool isReached = comesTrue([&] {
            place = widget(name)->mapToGlobal(widget(name)->rect().center());
            QCursor::setPos(place);
            return hasPopup() || widget(name)->underMouse();
        });
        if (verb == "over" || !isReached)
            return isReached;
        xdotool("mousedown 1"_s);
        const bool isPressed = comesTrue([&] { return hasPopup() || !isReleased(); });
        xdotool("mouseup 1"_s);
        return isPressed && comesTrue([&] { return hasPopup() == (verb == "menu"); });
    }

    QScopedPointer<MainWindow> window;
};

int main(int argc, char **argv)
{
    const VirtualDisplay display(1600, 1000);
    display.use();
    // Never deleted: what the display's plugin keeps can be told from a leak while it is loaded.
    auto *application = new App::Application(argc, argv);
    application->setStyleSheet(App::Application::globalStyleSheet());
    HoverTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "HoverTest.moc"
