// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "App/ServiceProfile.h"
#include "GUI/CameraWidget.h"
#include "GUI/ServerWidget.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/MisbehavingServer.h"

using GUI::CameraWidget;
using GUI::ServerWidget;

namespace {

const QString serverId = "s1"_s;

API::ServerPtr makeServer(const QList<WorldCamera> &cameras)
{
    setWorld({{serverId, "Office"_s, cameras}});
    return worldServer(serverId);
}

/// The window round an entry, so that hidden and visible mean what they say.
struct Stage {
    explicit Stage(const API::ServerPtr &server)
    {
        window.resize(260, 700);
        entry = new ServerWidget(server, &window);
        entry->resize(240, 700);
        window.show();
        ready = QTest::qWaitForWindowExposed(&window);
    }

    QWidget *part(const char *name) const
    {
        return entry->findChild<QWidget *>(QLatin1String(name));
    }

    QWidget window;
    ServerWidget *entry;
    bool ready;
};

QStringList shownNames(const ServerWidget &entry)
{
    QCoreApplication::processEvents();
    QList<CameraWidget *> cards = entry.cameraWidgets();
    std::sort(cards.begin(), cards.end(),
              [](const CameraWidget *a, const CameraWidget *b) { return a->y() < b->y(); });
    QStringList names;
    for (const CameraWidget *card : qAsConst(cards))
        names.append(card->camera()->name());
    return names;
}

} // namespace

class ServerWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
    }

    void cleanup() { setWorld({}); }

    void cardsFollowTheServersOrder()
    {
        const API::ServerPtr server = makeServer({{1, "b"_s}, {2, "a"_s}, {3, "C"_s}});
        const Stage stage(server);
        QCOMPARE(shownNames(*stage.entry), QStringList({"C", "a", "b"}));

        makeServer({{1, "b"_s}, {2, "a"_s, false}, {3, "C"_s}, {4, "aa"_s}});
        stage.entry->updateServer(server);
        QCOMPARE(shownNames(*stage.entry), QStringList({"C", "aa", "b", "a"}));

        makeServer({{1, "b"_s}, {2, "a"_s, false}});
        stage.entry->updateServer(server);
        QCOMPARE(shownNames(*stage.entry), QStringList({"b", "a"}));
        QTRY_COMPARE(stage.entry->findChildren<CameraWidget *>().size(), 2);
    }

    void refreshKeepsTheCards()
    {
        const API::ServerPtr server = makeServer({{1, "One"_s}, {2, "Two"_s}});
        const Stage stage(server);
        const QList<CameraWidget *> cards = stage.entry->cameraWidgets();
        makeServer({{1, "Zero"_s, false}, {2, "Two"_s}});
        stage.entry->updateServer(server);
        QCOMPARE(stage.entry->cameraWidgets(), cards);
        cards.first()->prepare();
        QCOMPARE(labelText(cards.first(), "cameraName"), "Zero (offline)"_s);
    }

    void newObjectUnderAnOldNumberGetsANewCard()
    {
        const API::ServerPtr server = makeServer({{1, "One"_s}});
        const Stage stage(server);
        const QPointer<CameraWidget> old(stage.entry->cameraWidgets().first());
        server->clearCameras();
        makeServer({{1, "One"_s}});
        QVERIFY(rosterCamera(serverId, 1) != old->camera());
        stage.entry->updateServer(server);
        QCOMPARE(stage.entry->cameraWidgets().size(), 1);
        QCOMPARE(stage.entry->cameraWidgets().first()->camera(), rosterCamera(serverId, 1));
        QTRY_VERIFY(!old);
    }

    void serverWithoutCamerasSaysSo()
    {
        const API::ServerPtr server = makeServer({});
        const Stage stage(server);
        const auto *label = stage.entry->findChild<QLabel *>("noCamerasLabel");
        QVERIFY(label->isVisible());
        QCOMPARE(label->text(), "No cameras attached"_s);
        QCOMPARE(label->alignment(), Qt::Alignment(Qt::AlignHCenter));

        makeServer({{1, "One"_s}});
        stage.entry->updateServer(server);
        QVERIFY(!label->isVisible());
        makeServer({});
        stage.entry->updateServer(server);
        QVERIFY(label->isVisible());
    }

    void onlyALanServerHasAMenu()
    {
        const Stage cloud(makeServer({}));
        QVERIFY(!cloud.part("settingsButton")->isVisible());

        const API::ServerPtr server = API::LocalServerPtr::create(
            "LAN"_s, "127.0.0.1"_s, MisbehavingServer::deadPort(), "password"_s);
        const Stage lan(server);
        auto *button = lan.entry->findChild<QPushButton *>("settingsButton");
        QVERIFY(button->isVisible());
        API::ServerPtr deleted;
        connect(lan.entry, QOverload<API::ServerPtr>::of(&ServerWidget::deleteServer), this,
                [&](const API::ServerPtr &which) { deleted = which; });
        API::ServerPtr edited;
        connect(lan.entry, &ServerWidget::editServer, this,
                [&](const API::ServerPtr &which) { edited = which; });
        const auto actions = button->menu()->actions();
        QCOMPARE(actions.first()->text(), "Edit"_s);
        actions.first()->trigger();
        QTRY_COMPARE(edited, server);
        QCOMPARE(actions.last()->text(), "Delete"_s);
        actions.last()->trigger();
        QCOMPARE(deleted, server);
    }

    void headingStandsInOrder()
    {
        // A LAN server is offline until it answers.
        const Stage lan(API::LocalServerPtr::create("LAN"_s, "127.0.0.1"_s,
                                                    MisbehavingServer::deadPort(), "password"_s));
        int right = -1;
        for (const char *name :
             {"expandButton", "serverName", "settingsButton", "serverOfflineImage"}) {
            const QWidget *part = lan.part(name);
            QVERIFY(part->isVisible());
            QVERIFY2(part->x() > right, name);
            right = part->geometry().right();
        }
        QVERIFY(right < 240);
        QCOMPARE(lan.part("settingsButton")->height(), 32);
        QCOMPARE(lan.part("serverName")->height(), 24);
    }

    void headingOpensAndCloses_data()
    {
        rows<QByteArray>({"part"}, {
                                       {"bar", QByteArray("controlBar")},
                                       {"name", QByteArray("serverName")},
                                       {"button", QByteArray("expandButton")},
                                       {"offline image", QByteArray("serverOfflineImage")},
                                   });
    }

    void headingOpensAndCloses()
    {
        const auto [part] = row<QByteArray>();
        const API::ServerPtr server = makeServer({{1, "One"_s}});
        server->setFlags(API::ServerOffline);
        const Stage stage(server);
        QVERIFY(stage.part("container")->isVisible());
        QWidget *target = stage.part(part);
        // Through the window, so that the event takes the way that a person's click takes.
        const QPoint at = target->mapTo(&stage.window, QPoint(3, target->height() / 2));
        QTest::mouseClick(stage.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
        QVERIFY(!stage.part("container")->isVisible());
        QTest::mouseClick(stage.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
        QVERIFY(stage.part("container")->isVisible());
    }

    void firstSavedExpansionCounts()
    {
        const Stage stage(makeServer({{1, "One"_s}}));
        const auto *button = stage.entry->findChild<QCheckBox *>("expandButton");
        stage.entry->collapse();
        stage.entry->saveExpandState();
        stage.entry->expand();
        stage.entry->saveExpandState();
        stage.entry->restoreExpandState();
        QVERIFY(!button->isChecked());
        // Nothing is saved now.
        stage.entry->expand();
        stage.entry->restoreExpandState();
        QVERIFY(button->isChecked());
    }

    void flatModeHidesTheHeading()
    {
        const Stage stage(makeServer({{1, "One"_s}}));
        stage.entry->collapse();
        stage.entry->setFlatMode(true);
        QVERIFY(!stage.part("controlBar")->isVisible());
        QVERIFY(!stage.part("line")->isVisible());
        QVERIFY(stage.part("container")->isVisible());
        const QPoint below(5, 300);
        QVERIFY(!dragFrom(stage.entry, below, below + QPoint(100, 0)));
        QTest::mouseRelease(stage.entry, Qt::LeftButton);

        stage.entry->collapse();
        stage.entry->setFlatMode(false);
        QVERIFY(stage.part("controlBar")->isVisible());
        QVERIFY(stage.part("line")->isVisible());
        QVERIFY(!stage.part("container")->isVisible());
        QVERIFY(dragFrom(stage.entry, below, below + QPoint(100, 0)));
    }

    void offlineImageFollowsTheExactFlag()
    {
        const API::ServerPtr server = makeServer({});
        const Stage stage(server);
        QVERIFY(!stage.part("serverOfflineImage")->isVisible());
        server->setFlags(API::ServerOffline);
        stage.entry->updateState();
        QVERIFY(stage.part("serverOfflineImage")->isVisible());
        server->setFlags(API::ServerOffline | 1);
        stage.entry->updateState();
        QVERIFY(!stage.part("serverOfflineImage")->isVisible());
    }

    void nameFollowsTheServer()
    {
        const API::ServerPtr server = makeServer({});
        const Stage stage(server);
        QCOMPARE(labelText(stage.entry, "serverName"), "Office"_s);
        server->setAlias("<b>Shop</b>"_s);
        QCOMPARE(labelText(stage.entry, "serverName"), "<b>Shop</b>"_s);
        server->setAlias(QString(300, QLatin1Char('W')));
        QCoreApplication::processEvents();
        QCOMPARE(stage.entry->width(), 240);
        QVERIFY(stage.part("serverName")->geometry().right() < 240);
    }

    void dragCarriesTheServer()
    {
        QList<WorldCamera> cameras;
        for (int i = 1; i <= 200; ++i)
            cameras.append({i, QString::number(i)});
        const Stage stage(makeServer(cameras));
        stage.entry->resize(240, 33000);
        QVERIFY(!dragFrom(stage.entry, QPoint(100, 20), QPoint(102, 20)));
        const QDrag *drag = dragFrom(stage.entry, QPoint(100, 20), QPoint(150, 40));
        QVERIFY(drag);
        QDataStream stream(drag->mimeData()->data("server"_s));
        QString id;
        stream >> id;
        QCOMPARE(id, serverId);
        QVERIFY(stream.atEnd());
        QCOMPARE(drag->supportedActions(), Qt::DropActions(Qt::MoveAction));
        QCOMPARE(drag->hotSpot(), QPoint(80, 50));
        // A picture of all the cards would be taller than a screen server takes.
        QVERIFY(drag->pixmap().height() > 200);
        QVERIFY(drag->pixmap().height() < 2000);
    }

    void signalsOfTheCardsAreRelayed()
    {
        const Stage stage(makeServer({{1, "One"_s}}));
        CameraWidget *card = stage.entry->cameraWidgets().first();
        QStringList heard;
        connect(stage.entry, &ServerWidget::openCamera, this, [&] { heard.append("open"); });
        connect(stage.entry, &ServerWidget::addToLayout, this, [&] { heard.append("add"); });
        connect(stage.entry, &ServerWidget::openInNewWindow, this, [&] { heard.append("window"); });
        card->prepare();
        QPushButton *button = card->findChild<QPushButton *>("previewMenu");
        const auto actions = button->menu()->actions();
        for (QAction *action : {actions.at(0), actions.at(1), actions.at(3)})
            action->trigger();
        QCOMPARE(heard, QStringList({"open", "add", "window"}));
        stage.entry->setAddToLayoutEnabled(false);
        QVERIFY(!actions.at(1)->isEnabled());
    }

    void laterCardsCannotBeAddedEither()
    {
        const API::ServerPtr server = makeServer({{1, "One"_s}});
        const Stage stage(server);
        stage.entry->setAddToLayoutEnabled(false);
        server->clearCameras();
        makeServer({{1, "One"_s}, {2, "Two"_s}});
        stage.entry->updateServer(server);
        const QList<CameraWidget *> cards = stage.entry->cameraWidgets();
        QCOMPARE(cards.size(), 2);
        for (CameraWidget *card : cards) {
            card->prepare();
            const auto actions = card->findChild<QPushButton *>("previewMenu")->menu()->actions();
            QVERIFY(!actions.at(1)->isEnabled());
        }
    }
};

QTEST_MAIN(ServerWidgetTest)
#include "ServerWidgetTest.moc"
