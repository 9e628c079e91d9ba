// SPDX-License-Identifier: MIT
#include "GUI/RosterWidget.h"
#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/SideBar.h"
#include "GUI/ToolBar.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/DialogVisitor.h"

using GUI::CameraWidget;
using GUI::RosterWidget;
using GUI::ServerWidget;

namespace {

/// A world in words: "Home: Garden, Door-; Shop-: Till". What ends in "-" is offline, a server
/// that begins with "=" is a camera itself. The numbers run against the alphabet, so that
/// nothing is in order from the start, and hang on the first letter alone: Door becomes Dog.
QList<WorldServer> worldOf(const QString &words)
{
    const auto number = [](const QString &name) { return 1000 - name.at(0).unicode(); };
    QList<WorldServer> world;
    for (const QString &entry : words.split("; "_s, Qt::SkipEmptyParts)) {
        QString alias = entry.section(':', 0, 0);
        const bool online = !alias.endsWith('-');
        const bool isCamera = alias.startsWith('=');
        alias.remove(QRegularExpression("^=|-$"_s));
        WorldServer server{QString::number(number(alias)), alias, {}, online, isCamera};
        for (const QString &name : entry.section(": "_s, 1).split(", "_s, Qt::SkipEmptyParts))
            server.cameras.append({number(name), name.section('-', 0, 0), !name.endsWith('-')});
        world.append(server);
    }
    return world;
}

WorldServer manyCameras(const QString &id, int count, bool online = true)
{
    WorldServer server{id, id, {}, online};
    for (int i = 1; i <= count; ++i)
        server.cameras.append({i, "%1"_s.arg(i, 5, 10, QLatin1Char('0'))});
    return server;
}

template <typename Widget>
QList<Widget *> fromTopToBottom(const QWidget &parent)
{
    QList<Widget *> widgets = parent.findChildren<Widget *>();
    std::sort(widgets.begin(), widgets.end(),
              [](const Widget *a, const Widget *b) { return a->y() < b->y(); });
    return widgets;
}

bool isShown(const QWidget *parent, const char *name)
{
    return parent->findChild<QWidget *>(QLatin1String(name))->isVisible();
}

struct Stage {
    explicit Stage(const QList<WorldServer> &world)
    {
        roster.resize(254, 600);
        roster.show();
        QVERIFY(QTest::qWaitForWindowExposed(&roster));
        refresh(world);
    }

    void refresh(const QList<WorldServer> &world)
    {
        setWorld(world);
        roster.updateRoster();
    }

    QList<ServerWidget *> entries() const
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return fromTopToBottom<ServerWidget>(roster);
    }

    /// What a person reads in the roster, in the words of worldOf(). Of a closed server only its
    /// name is there.
    QString shown() const
    {
        const QImage off = QPixmap(":/roster/icons/rosterCardOff.png"_s).toImage();
        QStringList servers;
        for (const ServerWidget *entry : entries()) {
            QString words = isShown(entry, "controlBar") ? labelText(entry, "serverName") : "";
            const auto *sign = entry->findChild<QLabel *>("serverOfflineImage");
            words += sign->isVisible() && !sign->pixmap(Qt::ReturnByValue).isNull() ? "-" : "";
            QStringList names;
            if (isShown(entry, "noCamerasLabel"))
                names.append(labelText(entry, "noCamerasLabel"));
            for (const CameraWidget *card : fromTopToBottom<CameraWidget>(*entry)) {
                const QString name = labelText(card, "cameraName").remove(" (offline)"_s);
                const auto *state = card->findChild<QLabel *>("cameraStateImage");
                const bool online = state->pixmap(Qt::ReturnByValue).toImage() != off;
                if (card->isVisible())
                    names.append(online ? name : name + '-');
            }
            servers.append(names.isEmpty() ? words : words + ": " + names.join(", "_s));
        }
        return servers.join("; "_s);
    }

    RosterWidget roster;
};

} // namespace

class RosterWidgetTest : public RosterTest
{
    Q_OBJECT

private slots:
    /// From each world to each other one: the order, the cards that stay, and nothing left behind.
    void refreshesShowTheRosterAsItIs()
    {
        const QList<QStringList> worlds{
            {"", ""},
            {"Home:; Shop-:", "Home: No cameras attached; Shop-: No cameras attached"},
            {"b: x; a-: x-; C: x", "C: x; b: x; a-: x-"},
            {"C-: y, x; b: x; a: x, z", "a: x, z; b: x; C-: x, y"},
            {"Home: b, a-, C, d", "Home: C, b, d, a-"},
            {"=Gate: Gate; Door: Door", "Door: Door; Gate: Gate"},
            {"=Gate: Gate; =Bridge: Bridge", ": Bridge; : Gate"}};
        Stage stage({});
        QHash<API::CameraPtr, const CameraWidget *> cards;
        QHash<QString, int> objects;
        const auto go = [&](const QStringList &world) {
            stage.refresh(worldOf(world.first()));
            QCOMPARE(stage.shown(), world.last());
            for (const ServerWidget *entry : stage.entries()) {
                QCOMPARE(entry->server(), worldServer(entry->server()->id()));
                const auto cameras = entry->server()->cameras();
                for (const CameraWidget *card : entry->cameraWidgets()) {
                    QCOMPARE(card->camera(), cameras.value(card->camera()->id()));
                    QCOMPARE(cards.value(card->camera(), card), card);
                    cards.insert(card->camera(), card);
                }
            }
            const int count = stage.roster.findChildren<QObject *>().size();
            QCOMPARE(count, objects.value(world.first(), count));
            objects.insert(world.first(), count);
        };
        for (const QStringList &from : worlds) {
            for (const QStringList &to : worlds) {
                go(from);
                go(to);
            }
            // Servers, then cameras, that went and came back unseen are new.
            setWorld({});
            go(from);
            for (const API::ServerPtr &server : API::CloudAPIClient::serverList())
                server->clearCameras();
            go(from);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void searchOpensClosesAndMarks_data()
    {
        rows<QString, bool, QString>(
            {"typed", "closed", "shown"},
            {{"camera of a closed server", "till", true, "My Home; Shop: Back door, [Till]"},
             {"cameras of both", "DOOR", true, "My Home: [Door], Garden; Shop: Back [door], Till"},
             {"nothing found", "xyz", false, "My Home; Shop"},
             {"alias leaves open", "my h", false, "[My H]ome: Door, Garden; Shop"},
             {"aliases and cameras", "o", false,
              "My H[o]me: D[o]or, Garden; Sh[o]p: Back d[o]or, Till"}});
    }

    void searchOpensClosesAndMarks()
    {
        const auto [typed, closed, shown] = row<QString, bool, QString>();
        Stage stage(worldOf("My Home: Garden, Door; Shop: Till, Back door"_s));
        const QList<ServerWidget *> entries = stage.entries();
        for (ServerWidget *entry : entries)
            entry->findChild<QCheckBox *>("expandButton")->setChecked(!closed);
        const QString before = stage.shown();
        for (int length = 1; length <= typed.size(); ++length)
            stage.roster.search(typed.left(length));
        QCOMPARE(stage.shown(), shown);
        // A refresh is no search.
        stage.roster.updateRoster();
        QCOMPARE(stage.shown(), shown);
        stage.roster.search(QString());
        QCOMPARE(stage.shown(), before);
        // What was open before counts once.
        entries.first()->collapse();
        stage.roster.search(QString());
        QVERIFY(stage.shown().startsWith("My Home; "_s));
    }

    void theFirstFoundComesIntoView()
    {
        Stage stage({manyCameras("first"_s, 12), manyCameras("second"_s, 12)});
        QCoreApplication::processEvents();
        stage.roster.search("00011"_s); // there are two
        const QWidget *card = stage.entries().first()->cardOf(11);
        const int end = card->mapTo(stage.roster.viewport(), card->rect().bottomLeft()).y() + 1;
        QCOMPARE(end + 8, stage.roster.viewport()->height());
        stage.roster.search("sec"_s);
        const QWidget *heading = stage.entries().last()->heading();
        QCoreApplication::processEvents();
        QCOMPARE(heading->visibleRegion().boundingRect(), heading->rect());
    }

    void onlyCardsInViewHavePreviews()
    {
        QBuffer jpeg;
        QVERIFY(QImage(32, 18, QImage::Format_RGB32).save(&jpeg, "JPEG"));
        service.answer("GET", "//preview/live", WireReply::body(jpeg.data(), "image/jpeg"));
        Stage stage({manyCameras("first"_s, 12), manyCameras("second"_s, 12)});
        const QList<CameraWidget *> cards = stage.roster.findChildren<CameraWidget *>();
        QSet<const CameraWidget *> expected;
        const auto compare = [&] {
            QCoreApplication::processEvents();
            const QWidget *viewport = stage.roster.viewport();
            stage.roster.widget()->repaint();
            for (const CameraWidget *card : cards) {
                const QRect place(card->mapTo(viewport, QPoint()), card->size());
                const bool inView = card->isVisible() && place.intersects(viewport->rect());
                QCOMPARE(card->isInView(), inView);
                if (inView)
                    expected.insert(card);
            }
            for (const CameraWidget *card : cards)
                QTRY_COMPARE(card->camera()->hasPreview(), expected.contains(card));
        };
        const auto compareReleased = [&] {
            expireTimers(releaseDelay);
            expected.clear();
            compare();
        };
        QScrollBar *bar = stage.roster.verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 3000);
        for (int value = 0; value < bar->maximum() + 800; value += 800) {
            bar->setValue(value);
            compare();
        }
        QVERIFY(expected.contains(cards.last()) && expected.size() < cards.size());
        compareReleased();
        // Collapsed cards are not in view, whatever their place was.
        stopClockAt(60);
        stage.entries().last()->collapse();
        compare();
        compareReleased();
        stage.entries().last()->expand();
        compare();
    }

    void largeRosterMakesCardsAsTheyAreSeen()
    {
        const Stage stage({manyCameras("many"_s, 1000)});
        const QList<CameraWidget *> cards = stage.entries().first()->cameraWidgets();
        QVERIFY(cards.last()->findChildren<QLabel *>().isEmpty());
        QScrollBar *bar = stage.roster.verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 100000);
        bar->setValue(bar->maximum());
        QTRY_VERIFY(!cards.last()->findChildren<QLabel *>().isEmpty());
        QCOMPARE(labelText(cards.last(), "cameraName"), "01000"_s);
        // A picture for a drag shows cards that were never in view, white round their names.
        CameraWidget *unseen = cards.at(500);
        QVERIFY(unseen->findChildren<QLabel *>().isEmpty());
        ServerWidget *entry = stage.entries().first();
        const QPoint place = unseen->mapTo(entry, QPoint(120, 150));
        QCOMPARE(entry->grab(QRect(place, QSize(1, 1))).toImage().pixelColor(0, 0), Qt::white);
    }

    void onlyALanServerIsEditedAndDeleted()
    {
        Stage stage(worldOf("My Home: Garden"_s));
        const auto local = API::LocalServerPtr::create("LAN"_s, "127.0.0.1"_s,
                                                       MisbehavingServer::deadPort(), QString());
        API::CloudAPIClient().addLocalServer(local);
        stage.roster.updateRoster();
        QCOMPARE(stage.shown(), "My Home: Garden; LAN-: No cameras attached"_s);
        ServerWidget *cloud = stage.entries().first();
        const ServerWidget *lan = stage.entries().last();
        QVERIFY(!isShown(cloud, "settingsButton"));
        // A long name leaves the rest of the heading in sight.
        local->setAlias("<b>Long</b> "_s + QString(300, 'W'));
        QCoreApplication::processEvents();
        QCOMPARE(labelText(lan, "serverName"), local->alias());
        const auto *last = lan->findChild<QLabel *>("serverOfflineImage");
        QVERIFY(isShown(lan, "settingsButton") && last->geometry().right() < cloud->width());
        API::ServerPtr edited;
        connect(&stage.roster, &RosterWidget::editServer, this,
                [&](const API::ServerPtr &server) { edited = server; });
        const auto actions = lan->findChild<QPushButton *>("settingsButton")->menu()->actions();
        QCOMPARE(actions.first()->text() + actions.last()->text(), "EditDelete"_s);
        actions.first()->trigger();
        QTRY_COMPARE(edited, local);
        emit cloud->deleteServer(cloud->server());
        actions.last()->trigger();
        QCOMPARE(stage.shown(), "My Home: Garden"_s);
        QCOMPARE(API::CloudAPIClient::serverList().size(), 1);
    }

    void headingOpensClosesAndIsDragged()
    {
        Stage stage({manyCameras("many"_s, 200, false)});
        ServerWidget *entry = stage.entries().first();
        for (const char *name :
             {"controlBar", "serverName", "expandButton", "serverOfflineImage"}) {
            const auto *part = entry->findChild<QWidget *>(QLatin1String(name));
            // Through the window, so that the event takes the way that a person's click takes.
            const QPoint at = part->mapTo(&stage.roster, QPoint(3, part->height() / 2));
            for (const bool open : {false, true}) {
                QTest::mouseClick(stage.roster.windowHandle(), Qt::LeftButton, {}, at);
                QCOMPARE(isShown(entry, "container"), open);
            }
        }
        QTest::mousePress(entry, Qt::LeftButton, {}, QPoint(100, 20));
        QVERIFY(!dragTo(entry, QPoint(102, 20)));
        const QDrag *drag = dragTo(entry, QPoint(150, 40));
        QVERIFY(drag && drag->mimeData()->hasFormat("server"_s));
        // A picture of all the cards would be taller than a screen server takes.
        QVERIFY(drag->pixmap().height() > 200 && drag->pixmap().height() < 2000);

        // Without a heading nothing is closed or dragged.
        stage.refresh(worldOf("=Gate: Gate; Shop: Till"_s));
        entry = stage.entries().first();
        entry->collapse();
        QCOMPARE(stage.shown(), "Gate; Shop: Till"_s);
        stage.refresh(worldOf("=Gate: Gate"_s));
        QCOMPARE(stage.shown(), ": Gate"_s);
        QTest::mousePress(entry, Qt::LeftButton, {}, QPoint(1, 1));
        QVERIFY(!dragTo(entry, QPoint(100, 1)));
    }

    void clickAndMenuOfACardReachTheWindow()
    {
        Stage stage(worldOf("Home: Garden; Shop: Till"_s));
        QStringList heard;
        connect(&stage.roster, &RosterWidget::openCamera, this,
                [&](const API::CameraPtr &camera) { heard += "open " + camera->name(); });
        connect(&stage.roster, &RosterWidget::addToLayout, this,
                [&](const API::CameraPtr &camera) { heard += "add " + camera->name(); });
        connect(&stage.roster, &RosterWidget::openInNewWindow, this,
                [&](const API::CameraPtr &camera) { heard += "window " + camera->name(); });
        const DialogVisitor visitor([&](const QDialog *dialog) {
            heard += "settings "_s + dialog->findChild<QLineEdit *>("cameraName")->text();
        });
        CameraWidget *card = stage.entries().last()->cameraWidgets().first();
        QTest::mouseClick(card, Qt::LeftButton);
        for (QAction *action : card->findChild<QMenu *>()->actions()) {
            heard += action->text();
            action->trigger();
        }
        QTRY_COMPARE(heard, QStringList({"open Till", "Open camera", "open Till", "Add to layout",
                                         "add Till", "Settings", "Open in a new window",
                                         "window Till", "settings Till"}));

        // To a full grid no card is added.
        const auto disabledEntries = [&] {
            QString texts;
            for (const QAction *action : stage.roster.findChildren<QAction *>())
                texts += action->isEnabled() ? "" : action->text();
            return texts;
        };
        stage.roster.setAddToLayoutEnabled(false);
        QCOMPARE(disabledEntries(), "Add to layout"_s.repeated(2));
        // Cards and servers that come later too.
        stage.refresh(worldOf("Home: Garden, Door; Shop: Till"_s));
        QCOMPARE(disabledEntries(), "Add to layout"_s.repeated(3));
        stage.roster.setAddToLayoutEnabled(true);
        QCOMPARE(disabledEntries(), QString());
    }

    void cardLeavesTheRosterWithItsMenuOpen()
    {
        for (const bool rightButton : {false, true}) {
            Stage stage(worldOf("Home: Garden; Shop: Till"_s));
            const QPointer<CameraWidget> card(stage.entries().first()->cameraWidgets().first());
            const QPointer<QMenu> menu(card->findChild<QMenu *>());
            bool opened = false;
            QTimer::singleShot(10000, menu, &QMenu::close);
            QTimer::singleShot(0, &stage.roster, [&] {
                opened = menu->isVisible();
                stage.refresh(worldOf("Shop: Till"_s));
            });
            QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(30, 30), QPoint(30, 30));
            if (rightButton)
                QCoreApplication::sendEvent(card, &event);
            else
                QTest::mousePress(card->findChild<QPushButton *>("previewMenu"), Qt::LeftButton);
            QTRY_VERIFY(opened && !card && !menu);
            QCOMPARE(stage.shown(), "Shop: Till"_s);
        }
    }

    void sideBarShowsOnePageAndSearchesBoth()
    {
        setWorld(worldOf("Home: Door"_s));
        GUI::SideBar bar;
        bar.show();
        bar.rosterWidget()->updateRoster();
        API::LayoutsContainer layouts{{"1"_s, API::LayoutPtr::create()},
                                      {"2"_s, API::LayoutPtr::create()}};
        layouts.first()->setName("Yard"_s);
        const API::CameraPtr camera = API::CloudAPIClient::serverList().first()->cameras().first();
        QPixmap picture(64, 48);
        picture.fill(Qt::red);
        camera->setPreview(picture);
        layouts.first()->setCamera(camera, 0, 0, 1, 1);
        bar.layoutListWidget()->updateLayouts(layouts);
        auto *edit = bar.findChild<QLineEdit *>("searchEdit");
        const auto *expanded = bar.findChild<QCheckBox *>("expandButton");
        const auto shown = [&] {
            QString words = edit->isVisible() ? edit->placeholderText() + edit->text() : "";
            for (const char *name : {"rosterWidget", "layoutListWidget", "settingsWidget"})
                words += isShown(&bar, name) ? ' ' + QString(name) : "";
            for (auto *card : bar.findChildren<GUI::LayoutCard *>()) {
                const QColor seen = card->grab().toImage().pixelColor(card->rect().center());
                words += card->isVisible() ? " card " + seen.name() : "";
            }
            return words;
        };
        QCOMPARE(shown(), "Search for cameras... rosterWidget"_s);
        QTest::keyClicks(edit, "yard"_s);
        QVERIFY(!expanded->isChecked());
        bar.setSettingsMode();
        bar.setLayoutsMode();
        QCOMPARE(shown(), "Search for layouts...yard layoutListWidget card #ff0000"_s);
        bar.setSettingsMode();
        QCOMPARE(shown(), " settingsWidget"_s);
        bar.setRosterMode();
        QCOMPARE(shown(), "Search for cameras...yard rosterWidget"_s);
        edit->clear();
        QVERIFY(expanded->isChecked());

        GUI::ToolBar tabs;
        tabs.resize(60, 400);
        // The form's background, which a plain widget with a style sheet has to paint itself.
        QCOMPARE(tabs.grab().toImage().pixelColor(30, 250), QColor(91, 102, 122));
    }
};

QTEST_MAIN(RosterWidgetTest)
#include "RosterWidgetTest.moc"
