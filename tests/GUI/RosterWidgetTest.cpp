// SPDX-License-Identifier: MIT
#include <QAction>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::CameraWidget;
using GUI::RosterWidget;
using GUI::ServerWidget;

class RosterWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void serversStandByAliasOfflineLast_data();
    void serversStandByAliasOfflineLast();
    void refreshAddsAndRemovesServers();
    void flatOnlyIfAllAreCameras_data();
    void flatOnlyIfAllAreCameras();
    void searchOpensAndCloses_data();
    void searchOpensAndCloses();
    void clearedSearchRestoresWhatWasOpen();
    void onlyCardsInViewAskForPreviews();
    void previewScrolledAwayIsReleased();
    void pollAsksTheService();
    void deletingALanServer();
    void cloudServerIsNotDeleted();
    void serverThatCameBackUnseenIsTheNewOne();
    void cardLeavesTheRosterWithItsMenuOpen();
    void rosterThatComesAndGoesLeavesNothingBehind();
    void largeRosterMakesCardsAsTheyAreSeen();
    void signalsReachTheWindow();
    void laterServersCannotBeAddedEither();

private:
    QSet<QByteArray> previewedCameras() const;

    ScriptedService service;
};

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
        for (const QString &id : {QStringLiteral("home"), QStringLiteral("shop")}) {
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
    return {{QStringLiteral("home"),
             QStringLiteral("My Home"),
             {{1, QStringLiteral("Garden")}, {2, QStringLiteral("Door")}}},
            {QStringLiteral("shop"),
             QStringLiteral("Shop"),
             {{1, QStringLiteral("Till")}, {2, QStringLiteral("Back door")}}}};
}

WorldServer manyCameras(int count)
{
    WorldServer server{QStringLiteral("many"), QStringLiteral("Many"), {}};
    for (int i = 1; i <= count; ++i)
        server.cameras.append({i, QStringLiteral("%1").arg(i, 5, 10, QLatin1Char('0'))});
    return server;
}

} // namespace

void RosterWidgetTest::initTestCase()
{
    QVERIFY(service.start());
}

void RosterWidgetTest::init()
{
    stopClockAt(0);
    service.reset();
}

void RosterWidgetTest::cleanup()
{
    runClock();
    setWorld({});
    QFile::remove(QStringLiteral("local_roster.txt"));
    API::CloudAPIClient().loadLocalRoster();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QSet<QByteArray> RosterWidgetTest::previewedCameras() const
{
    QSet<QByteArray> cameras;
    const QList<WireRequest> requests = service.requests();
    for (const WireRequest &request : requests) {
        // Those of an earlier test can be late.
        if (request.path().endsWith("preview/live") && request.target().contains("server=many&"))
            cameras.insert(request.target());
    }
    return cameras;
}

void RosterWidgetTest::serversStandByAliasOfflineLast_data()
{
    QTest::addColumn<QString>("offline");
    QTest::addColumn<QStringList>("order");
    QTest::newRow("all online") << QString() << QStringList{"C", "a", "b"};
    QTest::newRow("one offline") << QStringLiteral("a") << QStringList{"C", "b", "a"};
    QTest::newRow("the first offline") << QStringLiteral("C") << QStringList{"a", "b", "C"};
}

void RosterWidgetTest::serversStandByAliasOfflineLast()
{
    QFETCH(QString, offline);
    QFETCH(QStringList, order);
    const auto world = [](const QString &off) {
        QList<WorldServer> servers;
        for (const QString &alias : {QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("C")})
            servers.append({QStringLiteral("id-") + alias, alias, {}, alias != off});
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

void RosterWidgetTest::refreshAddsAndRemovesServers()
{
    setWorld({});
    Stage stage;
    QVERIFY(stage.entries().isEmpty());
    setWorld(homeAndShop());
    stage.roster.updateRoster();
    const QPointer<ServerWidget> home(stage.entry(QStringLiteral("home")));
    const QPointer<ServerWidget> shop(stage.entry(QStringLiteral("shop")));
    QVERIFY(home && home->isVisible() && shop);
    const QList<CameraWidget *> cards = home->cameraWidgets();

    setWorld({homeAndShop().first()});
    stage.roster.updateRoster();
    QTRY_VERIFY(!shop);
    QCOMPARE(stage.entry(QStringLiteral("home")), home.data());
    QCOMPARE(home->cameraWidgets(), cards);
}

void RosterWidgetTest::flatOnlyIfAllAreCameras_data()
{
    QTest::addColumn<bool>("first");
    QTest::addColumn<bool>("second");
    QTest::addColumn<bool>("flat");
    QTest::newRow("two servers") << false << false << false;
    QTest::newRow("one of each") << true << false << false;
    QTest::newRow("two cameras") << true << true << true;
}

void RosterWidgetTest::flatOnlyIfAllAreCameras()
{
    QFETCH(bool, first);
    QFETCH(bool, second);
    QFETCH(bool, flat);
    const WorldCamera camera{1, QStringLiteral("Camera")};
    setWorld({{QStringLiteral("a"), QStringLiteral("a"), {camera}, true, first},
              {QStringLiteral("b"), QStringLiteral("b"), {camera}, true, second}});
    Stage stage;
    const QList<ServerWidget *> entries = stage.entries();
    QCOMPARE(entries.size(), 2);
    for (const ServerWidget *entry : entries) {
        QCOMPARE(entry->findChild<QWidget *>("controlBar")->isVisible(), !flat);
        QVERIFY(entry->cameraWidgets().first()->isVisible());
    }
}

void RosterWidgetTest::searchOpensAndCloses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("collapsed");
    QTest::addColumn<QStringList>("open");
    const QStringList both{"home", "shop"};
    QTest::newRow("camera of a closed server") << "till" << both << QStringList{"shop"};
    QTest::newRow("cameras of both") << "DOOR" << both << both;
    QTest::newRow("nothing found") << "xyz" << QStringList() << QStringList();
    QTest::newRow("alias leaves closed") << "HOME" << both << QStringList();
    QTest::newRow("alias leaves open") << "my h" << QStringList{"shop"} << QStringList{"home"};
}

void RosterWidgetTest::searchOpensAndCloses()
{
    QFETCH(QString, text);
    QFETCH(QStringList, collapsed);
    QFETCH(QStringList, open);
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

void RosterWidgetTest::clearedSearchRestoresWhatWasOpen()
{
    setWorld(homeAndShop());
    Stage stage;
    stage.entry(QStringLiteral("shop"))->collapse();
    QString typed;
    for (const QChar letter : QStringLiteral("till")) {
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

void RosterWidgetTest::onlyCardsInViewAskForPreviews()
{
    setWorld({manyCameras(40)});
    Stage stage;
    ServerWidget *entry = stage.entry(QStringLiteral("many"));
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

void RosterWidgetTest::previewScrolledAwayIsReleased()
{
    setWorld({manyCameras(40)});
    Stage stage;
    const QList<CameraWidget *> cards = stage.entry(QStringLiteral("many"))->cameraWidgets();
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

void RosterWidgetTest::pollAsksTheService()
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

void RosterWidgetTest::deletingALanServer()
{
    setWorld({homeAndShop().first()});
    Stage stage;
    const int port = MisbehavingServer::deadPort();
    const auto local = API::LocalServerPtr::create(QStringLiteral("LAN"),
                                                   QStringLiteral("127.0.0.1"), port, QString());
    API::CloudAPIClient().addLocalServer(local);
    stage.roster.updateRoster();
    QCOMPARE(stage.aliases(), QStringList({"My Home", "LAN"}));
    emit stage.entry(local->id())->deleteServer(local);
    QTRY_COMPARE(stage.aliases(), QStringList{"My Home"});
    QVERIFY(!API::CloudAPIClient::serverList().contains(local->id()));
    QFile file(QStringLiteral("local_roster.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(!file.readAll().contains("LAN"));
}

void RosterWidgetTest::cloudServerIsNotDeleted()
{
    setWorld(homeAndShop());
    Stage stage;
    ServerWidget *entry = stage.entry(QStringLiteral("home"));
    emit entry->deleteServer(entry->server());
    emit entry->deleteServer(API::ServerPtr());
    QCOMPARE(stage.aliases(), QStringList({"My Home", "Shop"}));
    QVERIFY(API::CloudAPIClient::serverList().contains(QStringLiteral("home")));
}

void RosterWidgetTest::serverThatCameBackUnseenIsTheNewOne()
{
    setWorld(homeAndShop());
    Stage stage;
    const API::ServerPtr old = worldServer(QStringLiteral("home"));
    setWorld({});
    QList<WorldServer> world = homeAndShop();
    world.first().alias = QStringLiteral("Zoo");
    setWorld(world);
    stage.roster.updateRoster();
    QTRY_COMPARE(stage.aliases(), QStringList({"Shop", "Zoo"}));
    QVERIFY(worldServer(QStringLiteral("home")) != old);
    QCOMPARE(stage.entry(QStringLiteral("home"))->server(), worldServer(QStringLiteral("home")));
    QCOMPARE(stage.entry(QStringLiteral("home"))->cameraWidgets().size(), 2);
}

void RosterWidgetTest::cardLeavesTheRosterWithItsMenuOpen()
{
    setWorld(homeAndShop());
    Stage stage;
    const QPointer<CameraWidget> card(stage.entry(QStringLiteral("home"))->cameraWidgets().first());
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

void RosterWidgetTest::rosterThatComesAndGoesLeavesNothingBehind()
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
    const QPointer<QObject> shop(stage.entry(QStringLiteral("shop")));
    const int objects = stage.roster.findChildren<QObject *>().size();
    for (int round = 0; round < 12; ++round) {
        poll(stage.roster, changed);
        poll(stage.roster, homeAndShop());
    }
    QCOMPARE(stage.roster.findChildren<QObject *>().size(), objects);
    QCOMPARE(stage.entry(QStringLiteral("shop")), shop.data());
    QCOMPARE(stage.aliases(), QStringList({"My Home", "Shop"}));
}

void RosterWidgetTest::largeRosterMakesCardsAsTheyAreSeen()
{
    setWorld({manyCameras(1000)});
    Stage stage;
    const QList<CameraWidget *> cards = stage.entry(QStringLiteral("many"))->cameraWidgets();
    QVERIFY(cards.last()->findChildren<QLabel *>().isEmpty());
    QScrollBar *bar = stage.roster.verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 100000);
    bar->setValue(bar->maximum());
    QTRY_VERIFY(!cards.last()->findChildren<QLabel *>().isEmpty());
    QVERIFY(cards.last()->isInView());
    QCOMPARE(labelText(cards.last(), "cameraName"), QStringLiteral("01000"));
    QVERIFY(cards.at(500)->findChildren<QLabel *>().isEmpty());
}

void RosterWidgetTest::signalsReachTheWindow()
{
    setWorld(homeAndShop());
    Stage stage;
    QStringList heard;
    connect(&stage.roster, &RosterWidget::openCamera, this,
            [&](const API::CameraPtr &camera) { heard.append(camera->name()); });
    CameraWidget *card = stage.entry(QStringLiteral("home"))->cameraWidgets().first();
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

void RosterWidgetTest::laterServersCannotBeAddedEither()
{
    setWorld({});
    Stage stage;
    stage.roster.setAddToLayoutEnabled(false);
    setWorld(homeAndShop());
    stage.roster.updateRoster();
    CameraWidget *card = stage.entry(QStringLiteral("home"))->cameraWidgets().first();
    const auto actions = card->findChild<QPushButton *>("previewMenu")->menu()->actions();
    QCOMPARE(actions.at(1)->text(), QStringLiteral("Add to layout"));
    QVERIFY(!actions.at(1)->isEnabled());
}

QTEST_MAIN(RosterWidgetTest)
#include "RosterWidgetTest.moc"
