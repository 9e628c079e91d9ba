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
#include "tests/GUI/GridWorld.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient::GUI;

namespace {

/// Mode and cells, such as "view a . | . .".
QString shownBy(const MainWindow &window)
{
    const QMap<int, QString> modes{{InfoPanel::EmptyMode, "empty "},
                                   {InfoPanel::ViewMode, "view "},
                                   {InfoPanel::EditMode, "edit "}};
    return modes.value(window.findChild<InfoPanel *>()->mode()) + cellsOf(*gridOf(window));
}

void click(const MainWindow &window, const QString &button)
{
    window.findChild<QPushButton *>(button)->click();
}

QStringList savedNames()
{
    QFile file(API::Internal::layoutsCacheFile(QString()));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QJsonDocument document = QJsonDocument::fromJson(isOpen ? file.readAll() : "");
    QStringList names;
    for (const QJsonValue &layout : document["layouts"].toArray())
        names << layout["name"].toString();
    return names;
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
        addServerToRoster("s"_s, {"a", "b", "c"});
        addServerToRoster("online"_s, {"x"}, true);
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
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << "online"_s << 1;
        QVERIFY(drop(widgetAt(*gridOf(window), 0, 0), "camera"_s, bytes));
        QCOMPARE(shownBy(window), "view x"_s);
        QCOMPARE(window.findChild<InfoPanel *>()->layoutName(), "x"_s);
        QCOMPARE(active.count(), 1);
        QTRY_COMPARE(child.starts().size(), 1);

        const QPointer<Player::VideoWidget> tile = gridOf(window)->players().first();
        emit tile->closed(tile);
        QVERIFY2(tile, "the tile went in the middle of its own signal");
        QCOMPARE(shownBy(window), "empty ."_s);
        QTRY_VERIFY(!tile);
    }

    void menusOfTheRoster()
    {
        MainWindow window;
        window.findChild<RosterWidget *>()->updateRoster();
        const auto item = [&window](const QString &camera, int place) {
            for (const auto *card : window.findChildren<CameraWidget *>()) {
                if (card->camera()->name() == camera)
                    return card->findChild<QMenu *>()->actions().at(place);
            }
            return static_cast<QAction *>(nullptr);
        };
        constexpr int open = 0, add = 1, openInNewWindow = 3;
        item("a"_s, open)->trigger();
        QCOMPARE(shownBy(window), "view a"_s);
        QVERIFY2(!item("b"_s, add)->isEnabled(), "the grid is full");
        window.openLayout(layoutOf("a ."_s));
        QVERIFY(item("b"_s, add)->isEnabled());
        item("b"_s, add)->trigger();
        QCOMPARE(shownBy(window), "edit a b"_s);
        QVERIFY(!item("b"_s, add)->isEnabled());
        QSignalSpy opened(&window, QOverload<API::CameraPtr>::of(&MainWindow::openInNewWindow));
        item("c"_s, openInNewWindow)->trigger();
        QCOMPARE(opened.value(0).value(0).value<API::CameraPtr>(), cameraNamed("c"_s));
        QCOMPARE(shownBy(window), "edit a b"_s);
    }

    void aLayoutFromNewToDeleted()
    {
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
        QCOMPARE(savedNames(), QStringList{"Gate"});

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
        QCOMPARE(savedNames(), QStringList());
        QCOMPARE(shownNames(window), QStringList());
    }

    void editsAreAskedAbout_data()
    {
        rows<QString, QString, QString, int, QString>(
            {"before", "added", "then", "answer", "after"},
            {{"discarded", "a .", "b", "c", QMessageBox::Discard, "view c"},
             {"kept", "a .", "b", "c", QMessageBox::Cancel, "edit a b"},
             {"saved", "a .", "b", "c", QMessageBox::Save, "view c"},
             {"not answered", "a .", "b", "c", QMessageBox::NoButton, "edit a b"},
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
        MainWindow window;
        const auto act = [&window](const QString &words) {
            if (words == "new"_s)
                window.openNewLayout();
            else if (words == "cancel"_s)
                click(window, "cancelLayoutButton"_s);
            else
                window.openLayout(layoutOf(words == "listed"_s ? "a ."_s : words));
        };
        act(before);
        const API::LayoutPtr opened = gridOf(window)->savedLayout();
        if (before == "listed"_s)
            window.findChild<LayoutListWidget *>()->addLayout(opened);
        window.startLayoutEditor();
        if (!added.isEmpty())
            window.addToLayout(cameraNamed(added));

        QString question;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &window, [&question, button = answer] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                question = box->text();
                box->done(button);
            }
        });
        timer.start(10);
        act(then);
        QCOMPARE(question, added.isEmpty() ? QString() : "The layout has been modified."_s);
        QCOMPARE(shownBy(window), after);
        // Saving assigns to the object that was opened; the other answers leave it alone.
        const bool hasAdded = opened->cellAt(0, 1).camera == cameraNamed("b"_s);
        QCOMPARE(hasAdded, answer == QMessageBox::Save);
    }

    void windowReleasedWhileItAsksGoesAfterwards()
    {
        const QPointer<MainWindow> window = new MainWindow;
        window->show();
        window->openLayout(layoutOf(". ."_s));
        window->addToLayout(cameraNamed("a"_s));
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

    void quality_data()
    {
        rows<QString, QString, int>(
            {"grid", "then", "quality"},
            {{"4 cells", "x . | . .", "", 2},
             {"5 cells", "x . . . .", "", 1},
             {"9 cells", "x . . | . . . | . . .", "", 1},
             {"10 cells", "x . . . . | . . . . .", "", 0},
             {"10 cells, but 2 of them", "x:1x2 . . . . | . . . . .", "", 1},
             {"9 cells, but 2 of them", "x:2x1 . . | . . . | . . .", "", 2},
             {"low", "x", "setLowQuality", 0},
             {"middle", "x", "setMidQuality", 1},
             {"high", "x . . . . | . . . . .", "setHighQuality", 2},
             {"automatic again", "x", "setLowQuality setAutoQuality", 2},
             {"resized", "x", "2x5", 0},
             {"resized after a choice", "x .", "setMidQuality 2x5", 2}});
    }

    /// What the tile asks the service for.
    void quality()
    {
        const auto [grid, then, quality] = row<QString, QString, int>();
        const ScriptedChild child;
        MainWindow window;
        window.openLayout(layoutOf(grid));
        for (const QString &step : then.split(' ')) {
            if (step == "2x5"_s)
                emit window.findChild<InfoPanel *>()->layoutSizeChanged(2, 5);
            else if (!step.isEmpty())
                QMetaObject::invokeMethod(window.findChild<ControlPanel *>(), qPrintable(step));
        }
        const auto *process = gridOf(window)->players().first()->findChild<QProcess *>();
        QTRY_COMPARE(child.lastProcessId(), process->processId());
        const QUrlQuery query(QUrl(child.starts().last().first()));
        QCOMPARE(query.queryItemValue("q"_s), QString::number(quality));
    }

    void aNewTileKeepsQuietWithTheSoundOff()
    {
        const ScriptedChild child;
        MainWindow window;
        window.openLayout(layoutOf(". ."_s));
        window.setSoundVolume(70);
        window.enableSound(false);
        window.addToLayout(cameraNamed("x"_s));
        const auto lastVolume = [&child] {
            const QStringList volumes = child.commands().filter("volume"_s);
            return volumes.value(volumes.size() - 1);
        };
        QTRY_COMPARE(lastVolume(), "volume 0"_s);
        window.enableSound(true);
        QTRY_COMPARE(lastVolume(), "volume 70"_s);
    }

    void activeCameraIsToldOnce()
    {
        MainWindow window;
        QSignalSpy told(&window, &MainWindow::cameraActivated);
        window.openLayout(layoutOf("a b"_s));
        window.activateCamera(cameraNamed("a"_s));
        emit gridOf(window)->players().first()->clicked(cameraNamed("b"_s));
        // A camera of another window takes the mark away, and says nothing.
        window.activateCamera(cameraNamed("c"_s));
        window.activateCamera(cameraNamed("b"_s));
        QStringList names;
        for (const QVariantList &arguments : told)
            names << arguments.first().value<API::CameraPtr>()->name();
        QCOMPARE(names, (QStringList{"a", "b", "b"}));
    }

    void pauseAndUnpause()
    {
        MainWindow window;
        window.openCamera(cameraNamed("a"_s));
        const auto *page = window.findChild<QStackedWidget *>("playPauseStack"_s);
        for (const QString &button : {"pauseButton"_s, "playButton"_s, "pauseButton"_s}) {
            click(window, button);
            QCOMPARE(gridOf(window)->isPaused(), button == "pauseButton"_s);
            QCOMPARE(page->currentIndex() == 0, !gridOf(window)->isPaused());
        }
        window.openCamera(cameraNamed("b"_s));
        QVERIFY2(!gridOf(window)->isPaused(), "every new view starts live");
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
        click(window, "hideRosterButton"_s);
        click(window, "fullscreenButton"_s);
        click(window, "fullscreenButton"_s);
        QCOMPARE(shown(), "InfoPanel showPBtn"_s);
    }

    void theWindowIsRemembered()
    {
        MainWindow window;
        click(window, "layoutsButton"_s);
        QCOMPARE(App::settings().value("mainWindow/openTab"_s), QVariant("Layouts"_s));
        QSignalSpy closed(&window, &MainWindow::closeRequested);
        window.close();
        QCOMPARE(closed.count(), 1);
        QCOMPARE(App::settings().value("mainWindow/geometry"_s), window.saveGeometry());
        MainWindow next;
        next.show();
        QVERIFY(next.findChild<LayoutListWidget *>()->isVisible());
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
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(R"({"last_update": 2000000000, "layouts": [{"name": "Night", "id": "n"}]})");
        file.close();
        QTRY_COMPARE_WITH_TIMEOUT(shownNames(list), QStringList{"Night"}, 20000);
    }

    void theCardShowsPreviewsAndLines()
    {
        QPixmap preview(320, 180);
        preview.fill(Qt::red);
        cameraNamed("a"_s)->setPreview(preview);
        LayoutCard card(layoutOf(". . | a ."_s));
        card.show();
        const QPixmap label = card.findChild<QLabel *>("previewImage"_s)->grab();
        const QImage picture = label.toImage().scaled(100, 100);
        const QRgb empty = picture.pixel(25, 25);
        QCOMPARE(QColor(picture.pixel(25, 75)), QColor(Qt::red));
        QCOMPARE(picture.pixel(75, 75), empty);
        QVERIFY2(picture.pixel(25, 53) == empty, "the preview keeps its shape");
        QVERIFY2(picture.pixel(50, 25) != empty, "no line between the cells");
        const auto huge = API::LayoutPtr::create();
        huge->resize(1000000000, 1000000000);
        const LayoutCard paintedAtOnce(huge);
    }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
