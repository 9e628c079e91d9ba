// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/ScriptedService.h"

using GUI::CameraWidget;
using GUI::RosterWidget;
using GUI::ServerWidget;

namespace {

constexpr std::chrono::milliseconds releaseDelay(30000);
constexpr std::chrono::milliseconds pollInterval(20000);
constexpr QSize rosterSize(254, 600);

struct Stage {
    Stage()
    {
        roster.resize(rosterSize);
        roster.show();
        ready = QTest::qWaitForWindowExposed(&roster);
        roster.updateRoster();
    }

    QList<ServerWidget *> entries() const
    {
        QCoreApplication::processEvents();
        QList<ServerWidget *> found = roster.findChildren<ServerWidget *>();
        std::sort(found.begin(), found.end(),
                  [](const ServerWidget *a, const ServerWidget *b) { return a->y() < b->y(); });
        return found;
    }

    QStringList aliases() const
    {
        QStringList names;
        const QList<ServerWidget *> all = entries();
        for (const ServerWidget *entry : all)
            names.append(entry->server()->alias());
        return names;
    }

    ServerWidget *entry(const QString &id) const
    {
        const QList<ServerWidget *> all = entries();
        for (ServerWidget *candidate : all) {
            if (candidate->server()->id() == id)
                return candidate;
        }
        return nullptr;
    }

    bool isOpen(const QString &id) const
    {
        return entry(id)->findChild<QCheckBox *>("expandButton")->isChecked();
    }

    QStringList openServers() const
    {
        QStringList open;
        for (const QString &id : {"home"_s, "shop"_s}) {
            if (isOpen(id))
                open.append(id);
        }
        return open;
    }

    RosterWidget roster;
    bool ready;
};

QList<WorldServer> homeAndShop()
{
    return {{"home"_s, "My Home"_s, {{1, "Garden"_s}, {2, "Door"_s}}},
            {"shop"_s, "Shop"_s, {{1, "Till"_s}, {2, "Back door"_s}}}};
}

WorldServer manyCameras(int count)
{
    WorldServer server{"many"_s, "Many"_s, {}};
    for (int i = 1; i <= count; ++i)
        server.cameras.append({i, "%1"_s.arg(i, 5, 10, QLatin1Char('0'))});
    return server;
}

} // namespace

class RosterWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(service.start()); }

    void init()
    {
        stopClockAt(0);
        service.reset();
    }

    void cleanup()
    {
        runClock();
        setWorld({});
        QFile::remove("local_roster.txt"_s);
        API::CloudAPIClient().loadLocalRoster();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void serversStandByAliasOfflineLast_data()
    {
        rows<QString, QStringList>({"offline", "order"},
                                   {
                                       {"all online", QString(), QStringList{"C", "a", "b"}},
                                       {"one offline", "a"_s, QStringList{"C", "b", "a"}},
                                       {"the first offline", "C"_s, QStringList{"a", "b", "C"}},
                                   });
    }

    void serversStandByAliasOfflineLast()
    {
        const auto [offline, order] = row<QString, QStringList>();
        const auto world = [](const QString &off) {
            QList<WorldServer> servers;
            for (const QString &alias : {"b"_s, "a"_s, "C"_s})
                servers.append({"id-"_s + alias, alias, {}, alias != off});
            return servers;
        };
        setWorld(world(QString()));
        Stage stage;
        QCOMPARE(stage.aliases(), QStringList({"C", "a", "b"}));
        setWorld(world(offline));
        stage.roster.updateRoster();
        QCOMPARE(stage.aliases(), order);
        if (!offline.isEmpty())
            QVERIFY(stage.entries().last()->findChild<QLabel *>("serverOfflineImage")->isVisible());
    }

    void refreshAddsAndRemovesServers()
    {
        setWorld({});
        Stage stage;
        QVERIFY(stage.entries().isEmpty());
        setWorld(homeAndShop());
        stage.roster.updateRoster();
        const QPointer<ServerWidget> home(stage.entry("home"_s));
        const QPointer<ServerWidget> shop(stage.entry("shop"_s));
        QVERIFY(home && home->isVisible() && shop);
        const QList<CameraWidget *> cards = home->cameraWidgets();

        setWorld({homeAndShop().first()});
        stage.roster.updateRoster();
        QTRY_VERIFY(!shop);
        QCOMPARE(stage.entry("home"_s), home.data());
        QCOMPARE(home->cameraWidgets(), cards);
    }

    void flatOnlyIfAllAreCameras_data()
    {
        rows<bool, bool, bool>({"first", "second", "flat"},
                               {
                                   {"two servers", false, false, false},
                                   {"one of each", true, false, false},
                                   {"two cameras", true, true, true},
                               });
    }

    void flatOnlyIfAllAreCameras()
    {
        const auto [first, second, flat] = row<bool, bool, bool>();
        const WorldCamera camera{1, "Camera"_s};
        setWorld({{"a"_s, "a"_s, {camera}, true, first}, {"b"_s, "b"_s, {camera}, true, second}});
        Stage stage;
        const QList<ServerWidget *> entries = stage.entries();
        QCOMPARE(entries.size(), 2);
        for (const ServerWidget *entry : entries) {
            QCOMPARE(entry->findChild<QWidget *>("controlBar")->isVisible(), !flat);
            QVERIFY(entry->cameraWidgets().first()->isVisible());
        }
    }

    void searchOpensAndCloses_data()
    {
        const QStringList both{"home", "shop"};
        rows<QString, QStringList, QStringList>(
            {"text", "collapsed", "open"},
            {
                {"camera of a closed server", "till", both, QStringList{"shop"}},
                {"cameras of both", "DOOR", both, both},
                {"nothing found", "xyz", QStringList(), QStringList()},
                {"alias leaves closed", "HOME", both, QStringList()},
                {"alias leaves open", "my h", QStringList{"shop"}, QStringList{"home"}},
            });
    }

    void searchOpensAndCloses()
    {
        const auto [text, collapsed, open] = row<QString, QStringList, QStringList>();
        setWorld(homeAndShop());
        Stage stage;
        for (const QString &id : qAsConst(collapsed))
            stage.entry(id)->collapse();
        const QStringList before = stage.openServers();
        stage.roster.search(text);
        QCOMPARE(stage.openServers(), open);
        stage.roster.search(QString());
        QCOMPARE(stage.openServers(), before);
    }

    void clearedSearchRestoresWhatWasOpen()
    {
        setWorld(homeAndShop());
        Stage stage;
        stage.entry("shop"_s)->collapse();
        QString typed;
        for (const QChar letter : "till"_s) {
            typed.append(letter);
            stage.roster.search(typed);
        }
        QCOMPARE(stage.openServers(), QStringList{"shop"});
        // A refresh in between is no search.
        stage.roster.updateRoster();
        QCOMPARE(stage.openServers(), QStringList{"shop"});
        stage.roster.search(QString());
        QCOMPARE(stage.openServers(), QStringList{"home"});
    }

    void onlyCardsInViewAskForPreviews()
    {
        setWorld({manyCameras(40)});
        Stage stage;
        ServerWidget *entry = stage.entry("many"_s);
        const QList<CameraWidget *> cards = entry->cameraWidgets();
        QVERIFY(cards.first()->isInView());
        QVERIFY(!cards.last()->isInView());
        const auto inView = [&] {
            return int(std::count_if(cards.begin(), cards.end(),
                                     [](const CameraWidget *card) { return card->isInView(); }));
        };
        const int atTop = inView();
        QVERIFY(atTop >= 3 && atTop <= 5);
        QTRY_COMPARE(previewedCameras().size(), atTop);
        QVERIFY(cards.first()->isInView());

        QScrollBar *bar = stage.roster.verticalScrollBar();
        bar->setValue(bar->maximum());
        QTRY_VERIFY(cards.last()->isInView());
        QTRY_COMPARE(previewedCameras().size(), atTop + inView());

        // Collapsed cards are not in view, whatever their place was.
        service.reset();
        entry->collapse();
        stopClockAt(60);
        stage.roster.updateRoster();
        stage.roster.viewport()->repaint();
        for (const CameraWidget *card : cards)
            QVERIFY(!card->isInView());
        entry->expand();
        QTRY_VERIFY(!previewedCameras().isEmpty());
        QVERIFY(previewedCameras().size() <= atTop + 1);
    }

    void previewScrolledAwayIsReleased()
    {
        setWorld({manyCameras(40)});
        Stage stage;
        const QList<CameraWidget *> cards = stage.entry("many"_s)->cameraWidgets();
        QPixmap picture(32, 18);
        picture.fill(Qt::blue);
        cards.at(0)->camera()->setPreview(picture);
        cards.at(1)->camera()->setPreview(picture);
        QScrollBar *bar = stage.roster.verticalScrollBar();
        bar->setValue(bar->maximum());
        QTRY_VERIFY(!cards.first()->isInView());
        QTRY_VERIFY(cards.last()->isInView());
        stage.roster.widget()->repaint();
        QVERIFY(cards.at(0)->camera()->hasPreview());
        QVERIFY(expireTimers(releaseDelay) >= 2);
        QVERIFY(!cards.at(0)->camera()->hasPreview());
        QVERIFY(!cards.at(1)->camera()->hasPreview());
        QVERIFY(!cards.at(0)->hasPreview());
    }

    void pollAsksTheService()
    {
        service.succeed("GET", "/public/roster",
                        R"({"0":{"id":"s","name":"From the service","online":true,"cameras":{}}})");
        Stage stage;
        QTRY_COMPARE(stage.aliases(), QStringList{"From the service"});
        service.succeed("GET", "/public/roster",
                        R"({"0":{"id":"s","name":"Renamed","online":true,"cameras":{}}})");
        // The roster that was just taken is fresh for half a minute.
        QCOMPARE(expireTimers(pollInterval), 1);
        QCOMPARE(stage.aliases(), QStringList{"From the service"});
        stopClockAt(60);
        QCOMPARE(expireTimers(pollInterval), 1);
        QTRY_COMPARE(stage.aliases(), QStringList{"Renamed"});

        // A failure changes nothing.
        service.reset();
        stopClockAt(120);
        QCOMPARE(expireTimers(pollInterval), 1);
        QTRY_VERIFY(!service.requests().isEmpty());
        QTRY_COMPARE(service.server().openConnections(), 0);
        QCOMPARE(stage.aliases(), QStringList{"Renamed"});
    }

    void deletingALanServer()
    {
        setWorld({homeAndShop().first()});
        Stage stage;
        const int port = MisbehavingServer::deadPort();
        const auto local = API::LocalServerPtr::create("LAN"_s, "127.0.0.1"_s, port, QString());
        API::CloudAPIClient().addLocalServer(local);
        stage.roster.updateRoster();
        QCOMPARE(stage.aliases(), QStringList({"My Home", "LAN"}));
        emit stage.entry(local->id())->deleteServer(local);
        QTRY_COMPARE(stage.aliases(), QStringList{"My Home"});
        QVERIFY(!API::CloudAPIClient::serverList().contains(local->id()));
        QFile file("local_roster.txt"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(!file.readAll().contains("LAN"));
    }

    void cloudServerIsNotDeleted()
    {
        setWorld(homeAndShop());
        Stage stage;
        ServerWidget *entry = stage.entry("home"_s);
        emit entry->deleteServer(entry->server());
        emit entry->deleteServer(API::ServerPtr());
        QCOMPARE(stage.aliases(), QStringList({"My Home", "Shop"}));
        QVERIFY(API::CloudAPIClient::serverList().contains("home"_s));
    }

    void serverThatCameBackUnseenIsTheNewOne()
    {
        setWorld(homeAndShop());
        Stage stage;
        const API::ServerPtr old = worldServer("home"_s);
        setWorld({});
        QList<WorldServer> world = homeAndShop();
        world.first().alias = "Zoo"_s;
        setWorld(world);
        stage.roster.updateRoster();
        QTRY_COMPARE(stage.aliases(), QStringList({"Shop", "Zoo"}));
        QVERIFY(worldServer("home"_s) != old);
        QCOMPARE(stage.entry("home"_s)->server(), worldServer("home"_s));
        QCOMPARE(stage.entry("home"_s)->cameraWidgets().size(), 2);
    }

    void cardLeavesTheRosterWithItsMenuOpen()
    {
        setWorld(homeAndShop());
        Stage stage;
        const QPointer<CameraWidget> card(stage.entry("home"_s)->cameraWidgets().first());
        auto *button = card->findChild<QPushButton *>("previewMenu");
        const QPointer<QMenu> menu(button->menu());
        bool opened = false;
        QTimer::singleShot(0, &stage.roster, [&] {
            opened = menu->isVisible();
            setWorld({homeAndShop().last()});
            stage.roster.updateRoster();
        });
        QTest::mousePress(button, Qt::LeftButton);
        QVERIFY(opened);
        QTRY_VERIFY(!card);
        QVERIFY(!menu);
        QCOMPARE(stage.aliases(), QStringList{"Shop"});
    }

    void rosterThatComesAndGoesLeavesNothingBehind()
    {
        const auto poll = [](RosterWidget &roster, const QList<WorldServer> &world) {
            setWorld(world);
            roster.updateRoster();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        QList<WorldServer> changed{homeAndShop().last(), manyCameras(30)};
        changed.first().cameras.removeFirst();
        changed.first().online = false;
        changed.last().cameras.first().online = false;

        Stage stage;
        poll(stage.roster, changed);
        poll(stage.roster, homeAndShop());
        const QPointer<QObject> shop(stage.entry("shop"_s));
        const int objects = stage.roster.findChildren<QObject *>().size();
        for (int round = 0; round < 12; ++round) {
            poll(stage.roster, changed);
            poll(stage.roster, homeAndShop());
        }
        QCOMPARE(stage.roster.findChildren<QObject *>().size(), objects);
        QCOMPARE(stage.entry("shop"_s), shop.data());
        QCOMPARE(stage.aliases(), QStringList({"My Home", "Shop"}));
    }

    void largeRosterMakesCardsAsTheyAreSeen()
    {
        setWorld({manyCameras(1000)});
        Stage stage;
        const QList<CameraWidget *> cards = stage.entry("many"_s)->cameraWidgets();
        QVERIFY(cards.last()->findChildren<QLabel *>().isEmpty());
        QScrollBar *bar = stage.roster.verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 100000);
        bar->setValue(bar->maximum());
        QTRY_VERIFY(!cards.last()->findChildren<QLabel *>().isEmpty());
        QVERIFY(cards.last()->isInView());
        QCOMPARE(labelText(cards.last(), "cameraName"), "01000"_s);
        QVERIFY(cards.at(500)->findChildren<QLabel *>().isEmpty());
    }

    void signalsReachTheWindow()
    {
        setWorld(homeAndShop());
        Stage stage;
        QStringList heard;
        connect(&stage.roster, &RosterWidget::openCamera, this,
                [&](const API::CameraPtr &camera) { heard.append(camera->name()); });
        CameraWidget *card = stage.entry("home"_s)->cameraWidgets().first();
        QTest::mouseClick(card, Qt::LeftButton);
        QCOMPARE(heard, QStringList{"Garden"});
        stage.roster.setAddToLayoutEnabled(false);
        const QList<ServerWidget *> entries = stage.entries();
        for (const ServerWidget *entry : entries) {
            const QList<CameraWidget *> cards = entry->cameraWidgets();
            for (CameraWidget *each : cards) {
                const auto actions = each->findChildren<QAction *>();
                const auto disabled = [](const QAction *action) { return !action->isEnabled(); };
                QCOMPARE(std::count_if(actions.begin(), actions.end(), disabled), 1);
            }
        }
    }

    void laterServersCannotBeAddedEither()
    {
        setWorld({});
        Stage stage;
        stage.roster.setAddToLayoutEnabled(false);
        setWorld(homeAndShop());
        stage.roster.updateRoster();
        CameraWidget *card = stage.entry("home"_s)->cameraWidgets().first();
        const auto actions = card->findChild<QPushButton *>("previewMenu")->menu()->actions();
        QCOMPARE(actions.at(1)->text(), "Add to layout"_s);
        QVERIFY(!actions.at(1)->isEnabled());
    }

private:
    QSet<QByteArray> previewedCameras() const
    {
        QSet<QByteArray> cameras;
        const QList<WireRequest> requests = service.requests();
        for (const WireRequest &request : requests) {
            // Those of an earlier test can be late.
            if (request.path().endsWith("preview/live") &&
                request.target().contains("server=many&"))
                cameras.insert(request.target());
        }
        return cameras;
    }

    ScriptedService service;
};

QTEST_MAIN(RosterWidgetTest)
#include "RosterWidgetTest.moc"
