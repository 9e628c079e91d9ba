// SPDX-License-Identifier: MIT
#include "GUI/MainWindow.h"

#include "API/LayoutDocument.h"
#include "App/Settings.h"
#include "GUI/CameraWidget.h"
#include "GUI/ControlPanel.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/Timeline.h"
#include "tests/GUI/GridWorld.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient::GUI;

namespace {

/// Mode and cells, such as "view a . | . .".
QString shownBy(const MainWindow &window)
{
    const QStringList modes{"", "empty ", "view ", "unsaved ", "edit "};
    return modes.at(window.findChild<InfoPanel *>()->mode()) + cellsOf(*gridOf(window));
}

/// No answer: the window that asks is deleted, and goes afterwards.
constexpr int released = -1;

void click(const MainWindow &window, const QString &button)
{
    window.findChild<QPushButton *>(button)->click();
}

QString savedName()
{
    QFile file(API::Internal::layoutsCacheFile(QString()));
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return QJsonDocument::fromJson(content)["layouts"][0]["name"].toString();
}

/// Names on the cards of layouts, from the top.
QStringList shownNames(const QWidget &list)
{
    QCoreApplication::processEvents();
    QMap<int, QString> names;
    for (const auto *card : list.findChildren<LayoutCard *>()) {
        if (card->isVisible())
            names.insert(card->y(), card->findChild<QLabel *>("cameraName"_s)->text());
    }
    return names.values();
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<API::CameraPtr>("API::CameraPtr");
        qRegisterMetaType<API::LayoutPtr>("API::LayoutPtr");
        QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
        useServiceAt(MisbehavingServer::deadPort());
        fillRoster();
    }

    void cleanup()
    {
        App::settings().setValue("mainWindow/openTab"_s, "Cameras"_s);
        for (const API::LayoutPtr &layout : API::CloudAPIClient::layoutList())
            API::CloudAPIClient().deleteLayout(layout);
    }

    void theFirstCameraIsDroppedOnAnEmptyStart()
    {
        const ScriptedChild child;
        MainWindow window;
        QCOMPARE(shownBy(window), "empty ."_s);
        QSignalSpy active(&window, &MainWindow::cameraActivated);
        window.setSoundVolume(70);
        window.enableSound(false);
        QVERIFY(drop(widgetAt(*gridOf(window), 0, 0), "camera"_s, "online"_s, 1));
        QCOMPARE(shownBy(window), "view x"_s);
        QCOMPARE(window.findChild<InfoPanel *>()->layoutName(), "x"_s);
        QCOMPARE(active.count(), 1);
        const QPointer<Player::VideoWidget> tile = gridOf(window)->players().first();
        // A camera of another window takes the mark away, and says nothing.
        window.activateCamera(cameraNamed("c"_s));
        QCOMPARE(active.count(), 1);
        emit tile->clicked(tile->camera());
        QCOMPARE(active.value(1).value(0).value<API::CameraPtr>(), tile->camera());
        QTRY_COMPARE(child.starts().size(), 1);
        // It keeps quiet as long as the sound is off.
        const auto volumes = [&child] { return child.commands().filter("volume"_s); };
        QTRY_COMPARE(volumes().value(volumes().size() - 1), "volume 0"_s);
        window.enableSound(true);
        QTRY_COMPARE(volumes().value(volumes().size() - 1), "volume 70"_s);
        const QPointer<QProcess> process = tile->findChild<QProcess *>();
        QCOMPARE(process->state(), QProcess::Running);
        window.showArchivePanels();
        emit tile->closed(tile);
        QVERIFY2(tile, "the tile went in the middle of its own signal");
        // Before the event loop turns: a layout that follows has its own players to start.
        QCOMPARE(process->state(), QProcess::NotRunning);
        QCOMPARE(shownBy(window), "empty ."_s);
        QVERIFY2(window.findChild<Timeline *>()->isHidden(), "the next view is not live");
        QTRY_VERIFY(!tile);
    }

    void theWindowSaysWhatIsOpen()
    {
        MainWindow window;
        MainWindow other;
        window.show();
        window.findChild<RosterWidget *>()->updateRoster();
        // The title, and the names on the cards with an accent along the edge.
        const auto shown = [](const MainWindow &which) {
            QString words = which.windowHandle() ? which.windowHandle()->title() : QString();
            words.replace(QCoreApplication::applicationName(), "program"_s);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QStringList names;
            for (auto *card : which.findChildren<Preview *>()) {
                const QString name = card->findChild<QLabel *>("cameraName"_s)->text();
                if (card->grab().toImage().pixelColor(2, 70) == QColor(62, 183, 253))
                    names.append(name.section(" (offline"_s, 0, 0));
            }
            names.sort();
            return (QStringList{words} + names).join(' ');
        };
        QCOMPARE(shown(window), "program"_s);
        const API::LayoutPtr layout = layoutOf("a . | b ."_s);
        layout->setName("Gate\n[*]"_s);
        window.openLayout(layout);
        QCOMPARE(shown(window), "Gate [*] — program a b"_s);
        // Cards that come later know it too.
        API::CloudAPIClient().clearRoster();
        window.findChild<RosterWidget *>()->updateRoster();
        fillRoster();
        for (MainWindow *each : {&window, &other}) {
            each->findChild<RosterWidget *>()->updateRoster();
            each->findChild<LayoutListWidget *>()->updateLayouts({{layout->id(), layout}});
        }
        QCOMPARE(shown(window), "Gate [*] — program Gate\n[*] a b"_s);
        QCOMPARE(shown(other), QString());
        window.addToLayout(cameraNamed("c"_s));
        auto *tile = gridOf(window)->player(layout->cellAt(1, 0).camera);
        emit tile->closed(tile);
        window.findChild<QLineEdit *>("layoutNameEdit"_s)->setText("Yard"_s);
        QCOMPARE(shown(window), "Yard — program Gate\n[*] a c"_s);
        window.findChild<InfoPanel *>()->enterViewMode(); // nobody is here to be asked
        window.openCamera(cameraNamed("b"_s));
        QCOMPARE(shown(window), "b — program b"_s);
        window.findChild<QAction *>("actionClose"_s)->trigger();
        QCOMPARE(shown(window), "program"_s);
    }

    void menusOfTheRoster()
    {
        MainWindow window;
        window.findChild<RosterWidget *>()->updateRoster();
        const auto item = [&window](int camera, int place) {
            const auto cards = window.findChildren<CameraWidget *>();
            return cards.at(camera)->findChild<QMenu *>()->actions().at(place);
        };
        constexpr int open = 0, add = 1, openInNewWindow = 3, a = 1, b = 2, c = 3;
        item(a, open)->trigger();
        QCOMPARE(shownBy(window), "view a"_s);
        QVERIFY2(!item(b, add)->isEnabled(), "the grid is full");
        window.openLayout(layoutOf("a ."_s));
        QVERIFY(item(b, add)->isEnabled());
        item(b, add)->trigger();
        QCOMPARE(shownBy(window), "edit a b"_s);
        QVERIFY(!item(b, add)->isEnabled());
        QSignalSpy opened(&window, QOverload<API::CameraPtr>::of(&MainWindow::openInNewWindow));
        item(c, openInNewWindow)->trigger();
        QCOMPARE(opened.value(0).value(0).value<API::CameraPtr>(), cameraNamed("c"_s));
        QCOMPARE(shownBy(window), "edit a b"_s);
    }

    void aLayoutFromNewToDeleted()
    {
        ScriptedService service;
        const auto restore = qScopeGuard([] { useServiceAt(MisbehavingServer::deadPort()); });
        QVERIFY(service.start());
        MainWindow window;
        window.show();
        click(window, "layoutsButton"_s);
        click(window, "addLayoutButton"_s);
        QCOMPARE(shownBy(window), "edit . . | . ."_s);
        QVERIFY(window.findChild<RosterWidget *>()->isVisible());
        click(window, "gridSizeButton"_s);
        auto *editor = window.findChild<GridSizeEditor *>();
        QTest::mouseMove(editor, QPoint(30, 15));
        QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, QPoint(30, 15));
        window.addToLayout(cameraNamed("a"_s));
        window.findChild<QLineEdit *>("layoutNameEdit"_s)->setText("Gate"_s);
        click(window, "saveLayoutButton"_s);
        QCOMPARE(shownBy(window), "view a ."_s);
        QCOMPARE(savedName(), "Gate"_s);
        click(window, "layoutsButton"_s);
        QCOMPARE(shownNames(window), QStringList{"Gate"});
        auto *card = window.findChild<LayoutCard *>();
        const QList<QAction *> menu = card->findChild<QMenu *>()->actions();
        QSignalSpy opened(&window, QOverload<API::LayoutPtr>::of(&MainWindow::openInNewWindow));
        menu.at(1)->trigger();
        QCOMPARE(opened.value(0).value(0).value<API::LayoutPtr>(), gridOf(window)->savedLayout());
        window.openCamera(cameraNamed("b"_s));
        menu.at(0)->trigger();
        QCOMPARE(shownBy(window), "view a ."_s);
        window.openCamera(cameraNamed("b"_s));
        QTest::mouseClick(card, Qt::LeftButton);
        QCOMPARE(shownBy(window), "view a ."_s);
        menu.at(2)->trigger();
        QCOMPARE(savedName(), QString());
        QCOMPARE(shownNames(window), QStringList());
        // The service has the list without it, too.
        const auto sent = [&service] {
            QByteArrayList bodies;
            for (const WireRequest &request : service.requestsTo("//layouts"))
                bodies << request.body;
            return bodies;
        };
        QTRY_VERIFY(sent().contains("[\n]\n"));
    }

    void editsAreAskedAbout_data()
    {
        rows<QString, QString, QString, int, QString>(
            {"before", "added", "then", "answer", "after"},
            {{"discarded", "a .", "b", "c", QMessageBox::Discard, "view c"},
             {"kept", "a .", "b", "c", QMessageBox::Cancel, "edit a b"},
             {"saved", "a .", "b", "c", QMessageBox::Save, "view c"},
             {"not answered", "a .", "b", "c", QMessageBox::NoButton, "edit a b"},
             {"window released", "a .", "b", "new", released, "edit a b"},
             {"kept from a new one", "a .", "b", "new", QMessageBox::Cancel, "edit a b"},
             {"cancelled", "a .", "b", "cancel", QMessageBox::Discard, "empty ."},
             {"cancelled, kept", "a .", "b", "cancel", QMessageBox::Cancel, "edit a b"},
             {"cancelled, listed", "listed", "b", "cancel", QMessageBox::Discard, "view a ."},
             {"cancelled, not edited", "a .", "", "cancel", QMessageBox::Cancel, "view a ."},
             {"cancelled, new", "new", "", "cancel", QMessageBox::Cancel, "empty ."},
             {"cancelled, new, edited", "new", "b", "cancel", QMessageBox::Discard, "empty ."}});
    }

    void editsAreAskedAbout()
    {
        const auto [before, added, then, answer, after] =
            row<QString, QString, QString, int, QString>();
        const QPointer<MainWindow> window = new MainWindow;
        const auto act = [window](const QString &words) {
            if (words == "new"_s)
                window->openNewLayout();
            else if (words == "cancel"_s)
                click(*window, "cancelLayoutButton"_s);
            else
                window->openLayout(layoutOf(words == "listed"_s ? "a ."_s : words));
        };
        act(before);
        const API::LayoutPtr opened = gridOf(*window)->savedLayout();
        if (before == "listed"_s)
            window->findChild<LayoutListWidget *>()->addLayout(opened);
        window->startLayoutEditor();
        if (!added.isEmpty())
            window->addToLayout(cameraNamed(added));
        QString question;
        QTimer timer;
        connect(&timer, &QTimer::timeout, window, [&question, window, button = answer] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                question = box->text();
                button == released ? window->deleteLater() : box->done(button);
            }
        });
        timer.start(10);
        act(then);
        QVERIFY2(window, "the window went under its own question");
        QCOMPARE(question, added.isEmpty() ? QString() : "The layout has been modified."_s);
        QCOMPARE(shownBy(*window), after);
        // Saving assigns to the object that was opened; the other answers leave it alone.
        QCOMPARE(opened->cellAt(0, 1).camera == cameraNamed("b"_s), answer == QMessageBox::Save);
        if (answer != released)
            window->deleteLater();
        QTRY_VERIFY(!window);
    }

    void quality_data()
    {
        rows<QString, QString, int>(
            {"grid", "then", "quality"},
            {{"4 cells", "x . | . .", "", 2},
             {"5 cells", "x . . . .", "", 1},
             {"10 cells", "x . . . . | . . . . .", "", 0},
             {"10 cells, but 2 of them", "x:1x2 . . . . | . . . . .", "", 1},
             {"9 cells, but 2 of them", "x:2x1 . . | . . . | . . .", "", 2},
             {"high", "x . . . . | . . . . .", "setHighQuality", 2},
             {"automatic again", "x", "setLowQuality setAutoQuality", 2},
             {"resized", "x", "2x5", 0},
             {"resized after a choice", "x .", "setMidQuality 2x5", 2},
             {"resized from one cell after a choice", "x", "setMidQuality 2x5", 0},
             {"alone", "x . . . . | . . . . .", "alone", 2},
             {"no longer alone", "x . . . . | . . . . .", "alone alone", 0},
             {"alone after a choice", "x . . . . | . . . . .", "setMidQuality alone", 1},
             {"a choice while alone", "x . . . .", "alone setLowQuality alone", 0},
             {"automatic while alone", "x . . . .", "setLowQuality alone setAutoQuality", 2},
             {"and back", "x . . . .", "setLowQuality alone setAutoQuality alone", 1},
             {"alone in a pause", "x . . . .", "pause alone", 1},
             {"after the pause", "x . . . .", "pause alone play", 2},
             {"chosen in a pause", "x . . . .", "pause alone setLowQuality play", 0},
             {"back after it", "x . . . .", "alone pause alone alone alone play", 1}});
    }

    void quality()
    {
        const auto [grid, then, quality] = row<QString, QString, int>();
        const ScriptedChild child;
        const LogCapture log;
        MainWindow window;
        window.openLayout(layoutOf(grid));
        const auto starts = [&log] { return int(log.linesOf("Open url:"_s).size()); };
        QCOMPARE(starts(), 1); // not the best one first
        for (const QString &step : then.split(' ')) {
            const int once = starts() + 1;
            if (step == "2x5"_s)
                emit window.findChild<InfoPanel *>()->layoutSizeChanged(2, 5);
            else if (step == "alone"_s)
                QTest::keyClick(&window, Qt::Key_Return);
            else if (!step.isEmpty())
                QMetaObject::invokeMethod(window.findChild<ControlPanel *>(), qPrintable(step));
            QVERIFY(step != "2x5"_s || starts() == once);
        }
        const auto *tile = gridOf(window)->players().first();
        QTRY_COMPARE(child.lastProcessId(), tile->findChild<QProcess *>()->processId());
        const QUrlQuery query(QUrl(child.starts().last().first()));
        QCOMPARE(query.queryItemValue("q"_s), QString::number(quality));
    }

    void panelsHideAndComeBack()
    {
        MainWindow window;
        window.show();
        const auto shown = [&window] {
            QStringList names;
            for (const QString &name : {"SideBar"_s, "ToolBar"_s, "InfoPanel"_s, "showPBtn"_s}) {
                if (window.findChild<QWidget *>(name)->isVisible())
                    names << name;
            }
            return names.join(' ') + (window.isFullScreen() ? " on the whole screen" : "");
        };
        const QString all = "SideBar ToolBar InfoPanel"_s;
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(shown(), all);
        click(window, "hideRosterButton"_s);
        QCOMPARE(shown(), "InfoPanel showPBtn"_s);
        click(window, "showPBtn"_s);
        QCOMPARE(shown(), all);
        click(window, "fullscreenButton"_s);
        QCOMPARE(shown(), " on the whole screen"_s);
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(shown(), all);
        // Of two things to come back from, one tile alone is the first.
        window.openLayout(layoutOf("a b"_s));
        click(window, "fullscreenButton"_s);
        QTest::keyClick(&window, Qt::Key_Enter);
        QVERIFY(gridOf(window)->isMaximised());
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!gridOf(window)->isMaximised() && window.isFullScreen());
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(shown(), all);
        // The arrows lead from one that is alone to the next, and to edit means to see them all.
        QTest::keyClick(&window, Qt::Key_Enter);
        QTest::keyClick(&window, Qt::Key_Right, Qt::ControlModifier);
        QVERIFY(gridOf(window)->player(cameraNamed("b"_s))->isVisible());
        QVERIFY(!gridOf(window)->player(cameraNamed("a"_s))->isVisible());
        window.startLayoutEditor();
        QVERIFY(gridOf(window)->player(cameraNamed("a"_s))->isVisible());
        click(window, "hideRosterButton"_s);
        click(window, "fullscreenButton"_s);
        click(window, "fullscreenButton"_s);
        QCOMPARE(shown(), "InfoPanel showPBtn"_s);
        // The button follows what others switch.
        const auto *button = window.findChild<QPushButton *>("fullscreenButton"_s);
        for (const bool isOn : {true, false}) {
            window.onFullscreen();
            QCOMPARE(button->isChecked(), isOn);
        }
    }

    void theWindowIsRemembered()
    {
        MainWindow window;
        click(window, "layoutsButton"_s);
        QCOMPARE(App::settings().value("mainWindow/openTab"_s), QVariant("Layouts"_s));
        QTest::keyClick(&window, Qt::Key_N);
        QSignalSpy closed(&window, &MainWindow::closeRequested);
        window.close();
        QCOMPARE(closed.count(), 1);
        QCOMPARE(App::settings().value("mainWindow/geometry"_s), window.saveGeometry());
        MainWindow next;
        next.show();
        QVERIFY(next.findChild<LayoutListWidget *>()->isVisible());
        QVERIFY(gridOf(next)->areNamesShown());
        QTest::keyClick(&next, Qt::Key_N);
        QVERIFY(!gridOf(next)->areNamesShown());
        next.setRosterMode();
        QVERIFY(!next.findChild<LayoutListWidget *>()->isVisible());
        QCOMPARE(App::settings().value("mainWindow/openTab"_s), QVariant("Cameras"_s));
    }

    void layoutsStandByNameAndAreFound()
    {
        LayoutListWidget list;
        list.resize(260, 900);
        list.show();
        API::LayoutsContainer layouts;
        for (const QString &name : {"b"_s, "a"_s, "C"_s, "gone"_s}) {
            layouts[name] = API::LayoutPtr::create();
            layouts[name]->setName(name);
        }
        layouts["gone"_s]->resize(1000000000, 1000000000); // a stored one can claim any size
        list.updateLayouts(layouts);
        QCOMPARE(shownNames(list), (QStringList{"C", "a", "b", "gone"}));
        layouts["b"_s]->setName("A"_s);
        list.search("A"_s);
        layouts.remove("gone"_s);
        list.updateLayouts(layouts);
        QCOMPARE(shownNames(list), (QStringList{"A", "a"}));
        list.search(QString());
        QCOMPARE(shownNames(list), (QStringList{"A", "C", "a"}));
        // Another program of the account writes one.
        QFile file(API::Internal::layoutsCacheFile(QString()));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        file.write(R"({"last_update": 2000000000, "layouts": [{"name": "Night", "id": "n"}]})");
        QTRY_COMPARE_WITH_TIMEOUT(shownNames(list), QStringList{"Night"}, 20000);
    }

private:
    static void fillRoster()
    {
        addServerToRoster("s"_s, {"a", "b", "c"});
        addServerToRoster("online"_s, {"x"}, true);
    }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
