// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/SideBar.h"
#include "GUI/ToolBar.h"
#include "tests/support/Roster.h"

using namespace ZorvaneClient::GUI;

namespace {

/// Presses `button` in the next question, and notes that it was asked.
class Answer : public QObject
{
public:
    explicit Answer(QMessageBox::StandardButton pressed) : button(pressed)
    {
        connect(&timer, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            text = box->text();
            timer.stop();
            box->button(button)->click();
        });
        timer.start(10);
    }

    bool wasAsked() const { return !text.isEmpty(); }
    QString text;

private:
    QMessageBox::StandardButton button;
    QTimer timer;
};

LayoutWidget *gridOf(MainWindow &window)
{
    return window.findChild<LayoutWidget *>();
}

int modeOf(MainWindow &window)
{
    return window.findChild<InfoPanel *>()->mode();
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { addServerToRoster("s"_s, {"a", "b", "c", "d", "e"}); }

    void startsEmptyWithTheRoster()
    {
        MainWindow window;
        QCOMPARE(window.size(), QSize(1100, 650));
        QCOMPARE(window.playerCount(), 0);
        QCOMPARE(window.cellCount(), 1);
        QCOMPARE(modeOf(window), int(InfoPanel::EmptyMode));
        QVERIFY(!App::settings().value("mainWindow/openTab"_s).isValid());
    }

    void openTabIsRemembered()
    {
        {
            MainWindow window;
            window.findChild<ToolBar *>()->findChild<QPushButton *>("layoutsButton"_s)->click();
            QCOMPARE(App::settings().value("mainWindow/openTab"_s).toString(), "Layouts"_s);
        }
        MainWindow window;
        const auto *stack = window.findChild<SideBar *>()->findChild<QStackedWidget *>("stack"_s);
        QCOMPARE(stack->currentWidget()->objectName(), "layoutsListPage"_s);
        window.setRosterMode();
        QCOMPARE(stack->currentWidget()->objectName(), "rosterPage"_s);
        QCOMPARE(App::settings().value("mainWindow/openTab"_s).toString(), "Cameras"_s);
    }

    void cameraOpensAsOneCell()
    {
        MainWindow window;
        window.openCamera(camera(1));
        QCOMPARE(window.playerCount(), 1);
        QCOMPARE(window.cellCount(), 1);
        QCOMPARE(modeOf(window), int(InfoPanel::ViewMode));
        QCOMPARE(window.findChild<InfoPanel *>()->layoutName(), "a"_s);
        window.openCamera(camera(2));
        QCOMPARE(window.playerCount(), 1);
        QCOMPARE(gridOf(window)->players().first()->camera(), camera(2));
        QCOMPARE(modeOf(window), int(InfoPanel::ViewMode));
    }

    void closingTheOnlyCameraEmptiesTheWindow()
    {
        MainWindow window;
        window.openCamera(camera(1));
        Player::VideoWidget *tile = gridOf(window)->players().first();
        emit tile->closed(tile);
        QCOMPARE(window.playerCount(), 0);
        QCOMPARE(modeOf(window), int(InfoPanel::EmptyMode));
    }

    void editsAreAskedAbout_data()
    {
        rows<int, bool>({"button", "opened"}, {
                                                  {"discard", int(QMessageBox::Discard), true},
                                                  {"cancel", int(QMessageBox::Cancel), false},
                                                  {"save", int(QMessageBox::Save), true},
                                              });
    }

    void editsAreAskedAbout()
    {
        const auto [button, opened] = row<int, bool>();
        MainWindow window;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, 2);
        layout->setName("Yard"_s);
        QVERIFY(window.openLayout(layout));
        window.addToLayout(camera(1));
        QCOMPARE(modeOf(window), int(InfoPanel::EditMode));
        const API::LayoutPtr edited = gridOf(window)->workingLayout();

        Answer answer(static_cast<QMessageBox::StandardButton>(button));
        QCOMPARE(window.openLayout(API::LayoutPtr::create()), opened);
        QVERIFY(answer.wasAsked());
        QCOMPARE(answer.text, "The layout has been modified."_s);
        QCOMPARE(gridOf(window)->workingLayout() == edited, !opened);
        // Saving assigns to the object that was opened; the other answers leave it alone.
        QCOMPARE(layout->cellList().isEmpty(), button != int(QMessageBox::Save));
    }

    void cancelledNewLayoutEntersEditModeAllTheSame()
    {
        MainWindow window;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, 2);
        window.openLayout(layout);
        window.addToLayout(camera(1));
        Answer answer(QMessageBox::Cancel);
        window.openNewLayout();
        QVERIFY(answer.wasAsked());
        QCOMPARE(window.playerCount(), 1);
        QCOMPARE(window.cellCount(), 2);
        QCOMPARE(modeOf(window), int(InfoPanel::EditMode));
    }

    void untouchedNewLayoutGoesWithoutAQuestion()
    {
        MainWindow window;
        window.openNewLayout();
        QCOMPARE(window.cellCount(), 4);
        QCOMPARE(modeOf(window), int(InfoPanel::EditMode));
        Answer answer(QMessageBox::Cancel);
        emit window.findChild<InfoPanel *>()->layoutCancelled();
        QVERIFY(!answer.wasAsked());
        QCOMPARE(window.cellCount(), 1);
        QCOMPARE(modeOf(window), int(InfoPanel::EmptyMode));
    }

    void activeCameraIsToldOnce()
    {
        MainWindow window;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, 2);
        layout->setCamera(camera(1), 0, 0, 1, 1);
        layout->setCamera(camera(2), 0, 1, 1, 1);
        QList<API::CameraPtr> told;
        connect(&window, &MainWindow::cameraActivated, &window,
                [&told](API::CameraPtr activated) { told.append(activated); });
        window.openLayout(layout);
        QCOMPARE(told, QList<API::CameraPtr>{camera(1)});
        window.activateCamera(camera(1));
        QCOMPARE(told.size(), 1);
        emit gridOf(window)->player(camera(2))->clicked(camera(2));
        QCOMPARE(told.last(), camera(2));
        // A camera of another window takes the mark away, and says nothing.
        window.activateCamera(camera(5));
        QCOMPARE(told.size(), 2);
        window.activateCamera(camera(2));
        QCOMPARE(told.size(), 3);
    }

    void pauseAndUnpause()
    {
        MainWindow window;
        window.openCamera(camera(1));
        auto *stack = window.findChild<QStackedWidget *>("playPauseStack"_s);
        window.findChild<QPushButton *>("pauseButton"_s)->click();
        QVERIFY(gridOf(window)->isPaused());
        QCOMPARE(stack->currentWidget()->objectName(), "playPage"_s);
        window.findChild<QPushButton *>("playButton"_s)->click();
        QVERIFY(!gridOf(window)->isPaused());
        QCOMPARE(stack->currentWidget()->objectName(), "pausePage"_s);
        window.pause();
        window.openCamera(camera(2));
        QVERIFY2(!gridOf(window)->isPaused(), "every new view starts live");
    }

    void sidePanelsHideAndComeBack()
    {
        MainWindow window;
        window.show();
        auto *side = window.findChild<SideBar *>();
        auto *back = window.findChild<QPushButton *>("showPBtn"_s);
        QVERIFY(!back->isVisible());
        window.findChild<QPushButton *>("hideRosterButton"_s)->click();
        QVERIFY(!side->isVisible());
        QVERIFY(!window.findChild<ToolBar *>()->isVisible());
        QVERIFY(back->isVisible());
        back->click();
        QVERIFY(side->isVisible());
        QVERIFY(!back->isVisible());
    }

    void fullscreenKeepsTheSide()
    {
        MainWindow window;
        window.show();
        auto *side = window.findChild<SideBar *>();
        window.onFullscreen();
        QVERIFY(window.isFullScreen());
        QVERIFY(!side->isVisible());
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!window.isFullScreen());
        QVERIFY(side->isVisible());
        window.hideRosterAndToolbar();
        window.onFullscreen();
        window.onFullscreen();
        QVERIFY(!side->isVisible());
        QVERIFY(window.findChild<InfoPanel *>()->isVisible());
    }

    void closingTellsAndStoresTheGeometry()
    {
        MainWindow window;
        window.show();
        QList<MainWindow *> closed;
        connect(&window, &MainWindow::closeRequested, &window,
                [&closed](MainWindow *sender) { closed.append(sender); });
        window.close();
        QCOMPARE(closed, QList<MainWindow *>{&window});
        QCOMPARE(App::settings().value("mainWindow/geometry"_s).toByteArray(),
                 window.saveGeometry());
    }

    void anUnansweredQuestionKeepsTheLayout()
    {
        MainWindow window;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, 2);
        window.openLayout(layout);
        window.addToLayout(camera(1));
        QTimer::singleShot(0, &window, [&window] {
            // As the end of the event loop leaves it.
            window.findChild<QMessageBox *>()->done(0);
        });
        QVERIFY(!window.openLayout(API::LayoutPtr::create()));
        QCOMPARE(window.playerCount(), 1);
    }

    void windowReleasedWhileItAsksGoesAfterwards()
    {
        const QPointer<MainWindow> window = new MainWindow;
        window->show();
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, 2);
        window->openLayout(layout);
        window->addToLayout(camera(1));
        QTimer::singleShot(0, window, [window] {
            QVERIFY(window->findChild<QMessageBox *>());
            window->deleteLater();
        });
        // The longest way on after the question.
        window->openNewLayout();
        QVERIFY2(window, "the window went under its own question");
        QCOMPARE(window->playerCount(), 1);
        QTRY_VERIFY(!window);
    }

    void aNewTileKeepsQuietWithTheSoundOff()
    {
        QFile player("player"_s);
        QVERIFY(player.open(QIODevice::WriteOnly));
        player.write("#!/bin/sh\nexec cat > commands\n");
        player.setPermissions(player.permissions() | QFileDevice::ExeOwner);
        player.close();
        App::Environment::setPlayerProgram(QFileInfo(player).absoluteFilePath());
        addServerToRoster("online"_s, {"x"}, true);

        MainWindow window;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, 2);
        window.openLayout(layout);
        window.setSoundVolume(70);
        window.enableSound(false);
        window.addToLayout(rosterCamera("online"_s, 1));
        const auto lastVolume = [] {
            QFile commands("commands"_s);
            if (!commands.open(QIODevice::ReadOnly))
                return QByteArray();
            const QList<QByteArray> lines = commands.readAll().trimmed().split('\n');
            return lines.last();
        };
        QTRY_COMPARE(lastVolume(), QByteArray("volume 0"));
        window.enableSound(true);
        QTRY_COMPARE(lastVolume(), QByteArray("volume 70"));
    }

private:
    API::CameraPtr camera(int number) { return rosterCamera("s"_s, number); }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
